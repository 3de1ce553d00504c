#include "net/error_codes.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <tuple>

namespace {

struct ErrorText {
  size_t code;
  const char* text;
};

// clang-format off
constexpr ErrorText kErrorTexts[] = {
    {0, "Operation completed successfully."},
    {1, "Operation failed."},
    {2, "The connection failed."},
    {3, "The connection was rejected."},
    {4, "The connection was terminated."},
    {5, "The connection timed-out."},
    {6, "There was no connection."},
    {7, "Name lookup failed."},
    {8, "Data port could not be opened."},
    {9, "Accept failed."},
    {10, "The request was denied by the server."},
    {11, "The request is not supported by the server."},
    {12, "There was no response from the server."},
    {13, "Permission denied by the server."},
    {14, "The Server failed to connect on the data port."},
    {15, "The socket is not opened."},
    {16, "The socket is already opened or in use."},
    {17, "The socket creation failed."},
    {18, "The socket binding to local port failed."},
    {19, "The socket connection failed."},
    {20, "A timeout occurred."},
    {21, "A receive socket error occurred."},
    {22, "Winsock send command failed."},
    {23, "The listen process failed."},
    {24, "A client socket closure  caused a failure."},
    {25, "A server socket closure caused failure."},
    {26, "An error occurred as a result of an invalid file type."},
    {27, "An error occurred as a result of not being able to open a file."},
    {28, "An error occurred as a result of not being able to create a file."},
    {29, "A file read error occurred."},
    {30, "A file write error occurred."},
    {31, "Error trying to close file."},
    {32, "There was no output file name provided, and no output file name was included with the attachment."},
    {33, "File format error."},
    {34, "Get temporary file name failed."},
    {35, "An error resulted due to the buffer being too short."},
    {36, "An error resulted due to a NULL buffer"},
    {37, "An error occurred as a result of an invalid or negative response."},
    {38, "There was no response."},
    {39, "The index value was out of range."},
    {40, "The user name was invalid."},
    {41, "The password was invalid."},
    {42, "This is a malformed message."},
    {43, "Invalid format."},
    {44, "Not a MIME file."},
    {45, "A bad URL was given."},
    {46, "An invalid command."},
    {47, "MAIL command failed."},
    {48, "The RETR command failed."},
    {49, "The PORT command failed."},
    {50, "The LIST command failed."},
    {51, "The STOR command failed."},
    {52, "The DATA command failed."},
    {53, "The USER command failed."},
    {54, "The HELLO command failed."},
    {55, "The PASS command failed."},
    {56, "The STAT command failed."},
    {57, "The TOP command failed."},
    {58, "The UIDL command failed."},
    {59, "The DELE command failed."},
    {60, "The RSET command failed."},
    {61, "The XOVER command failed."},
    {62, "The USER command was not accepted."},
    {63, "The PASS command was not accepted."},
    {64, "The ACCT command was not accepted."},
    {65, "The RNFR command not accepted."},
    {66, "The RNTO command not accepted."},
    {67, "The RCPT command failed. The specified account does not exsist."},
    {68, "Bad article, posting rejected by server"},
    {69, "Posting is not allowed."},
    {70, "Posting rejected by server"},
    {71, "The AUTHINFO USER command failed."},
    {72, "The AUTHINFO PASS command failed."},
    {73, "The XOVER command failed."},
    {74, "Can't open message data source."},
    {75, "Close message data source failed."},
    {76, "Failed to write a line to the message data source."},
    {77, "Failed to read a line from the message data source."},
    {78, "There is no any attachments in the message data source."},
    {79, "Message body exceeds maximum length."},
    {80, "Failed to add attachment to the message."},
    {81, "Failed to open data source."},
    {82, "Failed to close data source."},
    {83, "Failed to write to the data source."},
    {84, "Invalid character in the stream."},
    {85, "Too many characters on one line."},
    {86, "Server login failed. Username or password invalid."},
    {87, "NOOP command failed."},
    {88, "Command unknown or arguments invalid."},
    {89, "Unknown response."},
    {90, "You must login first."},
    {91, "You must select the mailbox first."},
    {92, "Unable to load the required RAS DLLs"},
    {93, "An error occurred during the dialing process"},
    {94, "An error occurred when attempting to dial"},
    {95, "An invalid RAS handle was given"},
    {96, "An error occurred when performing a RAS enumeration"},
    {97, "An invalid or non-existant RAS entry name was given"},
    {98, "Aborted by user."},
    {99, "A bad hostname format."},
    {100, "The address is not valid."},
    {101, "The address format is not valid."},
    {102, "User terminated the process."},
    {103, "The authorized name server was not found."},
    {104, "Unable to set the server name."},
    {105, "Parameter too long."},
    {106, "Invalid value of the parameter."},
    {107, "Get temorary filename failed."},
    {108, "Out of memory."},
    {109, "Update of group information failed."},
    {110, "No selected news group."},
    {111, "Internal error."},
    {112, "Already in use."},
    {113, "No current message set."},
    {114, "The Quote Command was empty"},
    {115, "The REST command is not supported by the server"},
    {116, "Failed to load system information."},
    {117, "Failed to load user information."},
    {118, "User with this name is alredy existing."},
    {119, "Mailbox with this name is alredy existing."},
    {120, "Can't load the security libraries."},
    {121, "Can't open the certificate store."},
    {122, "Can't find the certificate."},
    {123, "Can't create security credentials."},
    {124, "Failed to initialize security context."},
    {125, "Faile to accept security context."},
    {126, "Security handshake failed."},
    {127, "Failed to query the certificate."},
    {128, "Failed to get the certificate chain."},
    {129, "Failed to verify the certificate chain."},
    {130, "Failed to verify the certificate trust."},
    {131, "Failed to get the security stream sizes."},
    {132, "Failed to apply control token."},
    {133, "Failed to receive the security message."},
    {134, "Security context expired."},
    {135, "Failed to decrypt security message."},
    {136, "Failed to encrypt security message."},
    {137, "String parameter contains invalid characters."},
    {138, "Failed to create security key."},
    {139, "Failed to export security key."},
    {140, "The certificate store is not opened."},
    {141, "Failed to create the Certificate Enrollment object."},
    {142, "Server does not support SSL. Connection failed."},
    {143, "Security certificate date is not valid."},
    {144, "STARTTLS not supported by the IMAP4 server."},
    {145, "STARTTLS not supported by the SMTP server."},
    {146, "TLS not supported by the POP3 server."},
    {147, "Base Cryptographic Provider does not support Key Lengths more than 512 bits."},
    {148, "Wrong encoding type. Must be 'Q' or 'B'."},
    {149, "Invalid character in the CharSet string."},
    {150, "Character set name is too big."},
    {151, "Invalid encoding format."},
};
// clang-format on

// Filled at the first question. Threads that ask at the same time write the same pointers.
std::array<std::atomic<const char*>, 152> errorStrings;
std::atomic<std::int32_t> errorStringsFilled{0};
static_assert(std::size(kErrorTexts) == std::tuple_size_v<decltype(errorStrings)>);

void FillErrorStrings() {
  for (const ErrorText& entry : kErrorTexts) errorStrings[entry.code] = entry.text;
  errorStringsFilled = 1;
}

}  // namespace

const char* CUT_ERR::GetErrorString(std::int32_t code) {
  if (errorStringsFilled == 0) FillErrorStrings();
  const auto index = static_cast<std::uint32_t>(code);
  if (index >= errorStrings.size()) return "CUT_ERR::GetErrorString: Array out of bounds!";
  const char* text = errorStrings[index];
  if (text == nullptr) return "CUT_ERR::GetErrorString: ErrorString array improperly initialized";
  return text;
}
