// The FTP client: logs in, moves through remote folders, lists them, and moves files between the server
// and data sources. It speaks on its own connection and opens a second one for each transfer or
// listing, on a port of ours (PORT), where only the server's address is let in, or of the server's
// (PASV), and closes it before the operation returns.
//
// One thread at a time. Operations return an error code (0: success), every code goes through OnError,
// and nothing throws. A wait for a reply ends after the data connection's receive time-out. An abort
// (IsAborted, the progress hooks) is looked for between chunks and between listing lines, and every
// second or so within a slow one, and tells the operation's code (98) also where it ended a wait; the
// reply that is due by then is still read, so that the next command gets its own.
//
// Names and other texts are 8-bit and go to the server as they are; null counts as "". One with a CR or
// LF is refused (137), and so is a command beyond 260 characters (105), before anything is sent.
#ifndef MOSAICON_NET_FTP_CLIENT_H_
#define MOSAICON_NET_FTP_CLIENT_H_

#include <cstdint>
#include <functional>
#include <string>

#include "net/ftp_listing.h"
#include "net/net_text.h"
#include "net/string_list.h"
#include "net/ws_data_client.h"

// A macro of windows.h. Sources that have read that header and sources that have not would see two
// different classes, so the name is taken back: the method is DeleteFile everywhere, and the system's
// function behind this header is DeleteFileA. A source that reads windows.h only afterwards does not
// compile where it calls the method; it includes windows.h first.
#undef DeleteFile

class CUT_FTPClient : public CUT_WSClient {
 public:
  CUT_FTPClient();
  ~CUT_FTPClient() override;  // as FTPClose

  using CUT_WSClient::ReceiveFileByName;
  using CUT_WSClient::SendFileByName;

  // Reads the greeting.
  int OnSocketConnected(SocketHandle socket, const char* remoteAddress) override;

  // The order of the virtual functions is part of the interface. The passive forms use PASV whatever
  // SetPassive says.
  virtual int SendFilePassiveByName(const char* localFile, const char* remoteName);
  virtual int SendFilePassive(CUT_DataSource& source, const char* remoteName);
  virtual int ReceiveFilePassiveByName(const char* remoteName, const char* localFile);
  virtual int ReceiveFilePassive(CUT_DataSource& source, const char* remoteName);
  virtual int ResumeReceiveFilePassive(CUT_DataSource& source, const char* remoteName);
  virtual int ListPassive();
  // Understand the listing line that has just been received.
  virtual void ParseUnixListLine(FtpDirEntry& entry);
  virtual void ParseDosListLine(FtpDirEntry& entry);

  // Closes what is open, whatever comes of the rest, and logs in; the account is sent only when the server
  // asks for one. After a failed login the connection stays open until FTPClose.
  virtual int FTPConnect(const char* host, const char* user, const char* password,
                         const char* account = nullptr);
  // Says goodbye without waiting for the answer. Always 0.
  virtual int FTPClose();

  // Receiving truncates what is there.
  virtual int ReceiveFileByName(const char* remoteName, const char* localFile);
  virtual int ReceiveFile(CUT_DataSource& source, const char* remoteName);
  // Continues at the end of what the source holds; starts anew when it cannot be read.
  virtual int ResumeReceiveFileByName(const char* remoteName, const char* localFile);
  virtual int ResumeReceiveFile(CUT_DataSource& source, const char* remoteName);
  virtual int SendFileByName(const char* localFile, const char* remoteName);
  virtual int SendFile(CUT_DataSource& source, const char* remoteName);

  virtual int RenameFile(const char* oldName, const char* newName);
  virtual int DeleteFile(const char* remoteName);
  // The quoted path of the server's answer; without one, or on failure, the text of the answer, of
  // which size - 2 characters fit.
  virtual int GetCurDir(char* buffer, int size);
  virtual int ChDir(const char* directory);
  virtual int CdUp();
  virtual int MkDir(const char* directory);
  virtual int RmDir(const char* directory);
  virtual int NoOp();
  // Replaces the entries. A folder of more than a million of them fails, and so does a line of megabytes.
  virtual int List();
  virtual int Help(const char* topic);
  // Sends any command; whatever the server answers is a success. Texts of more than 256 characters
  // arrive as several commands.
  virtual int Quote(const char* command);

  // The lines of the last reply of several lines, and of the single-line replies since then.
  virtual int GetReplyLineCount();
  virtual int GetReplyLine(int index, char* buffer, int size);
  virtual const char* GetReplyLineText(int index);  // null when there is none
  // The last line of the last reply.
  virtual int GetLastReply(char* buffer, int size);
  virtual const char* GetLastReplyText();

  // Stream, block, compressed (0, 1, 2) and file, record, page (0, 1, 2). For other values below 4
  // nothing is sent, but a reply is waited for.
  int SetTransferMode(int mode);
  int SetStructure(int structure);
  // 1 image, 0 ASCII.
  int SetTransferType(int type);

  // A copy, without a next. Indices count from 0.
  int GetDirEntry(int index, FtpDirEntry& entry);
  int GetDirEntryCount() const { return m_nEntries; }
  void ClearDirList();

  // Reads one reply and returns its code, 0 when there was none. text, when given, receives what
  // follows the code, at most size - 2 characters.
  int GetResponseCode(CUT_WSClient& connection, char* text = nullptr, int size = 0);

  void SetPassive(bool passive) { m_bPassive = passive ? 1 : 0; }
  // True: passive data connections go to the address of the connection for commands, whatever address
  // the server names. False (the default): to the one that it names, which may be any host that this
  // computer reaches, and none at all when the server does not know how it is reached.
  void SetPassiveToControlAddress(bool always) { m_bPassiveToControl = always ? 1 : 0; }
  // Not a port: 106.
  int SetControlPort(int port);
  // For the port that the next transfer offers, 1 to 32000. Otherwise 106.
  int SetNextDataPort(int port);
  // Of the connection for commands, and of those for data in passive mode.
  void SetConnectTimeout(int seconds) { m_nConnectTimeout = seconds; }
  // Of the data connections to come, a second or more (less counts as one). The first one is also how
  // long a reply is waited for, in whole seconds.
  void SetDataTimeouts(std::int32_t receiveMilliseconds, std::int32_t sendMilliseconds);

  // Of the connection for commands and of those for data.
  void SetWaitListener(WaitListener* listener);

  int GetTransferType() const { return m_bBinary; }
  int GetTransferMode() const { return m_nTransferMode; }
  int GetStructure() const { return m_nStructure; }
  bool IsLoggedIn() const { return m_bConnected != 0; }

 private:
  struct DataAddress {
    std::string address;
    std::uint16_t port = 0;
  };

  // Wiped, for it stands on the stack, which crash reports hold.
  struct LoginCommands {
    ~LoginCommands() { Wipe(this, sizeof *this); }
    char user[kFtpLineSize];
    char password[kFtpLineSize];
    char account[kFtpLineSize];
  };

  static int CheckText(const char* format, const char* text, char (&command)[kFtpLineSize]);
  void SendCommand(const char* command);
  int Ask(const char* command, char* text = nullptr, int size = 0);
  int AskWithText(const char* format, const char* text, int lowest, int highest, int failure);
  int CheckLastReply(int reply, int lowest, int highest, int failure);
  int AskForChoice(int value, const char* const (&commands)[3], std::int32_t& stored);
  void ReadLateReplies();
  bool SkipToFinalReply(long seconds);

  int LogIn(const LoginCommands& commands);

  int OfferDataPort(int noPortCode);
  int ListenOnDataPort(int noPortCode);
  int AcceptData(long seconds);
  bool AcceptServer(long seconds);
  int PrepareData();
  int AfterWait(int code);
  int StartActive(const char* command, int refusedCode);
  int FindPassivePort(int noBracketCode, int badPortCode, DataAddress& target);
  int ConnectData(const char* command, int refusedCode, const DataAddress& target);
  int CloseDataAfter(int code);
  int FinishTransfer(int code);

  int Store(CUT_DataSource& source, const std::function<int()>& start);
  int ReceivePassive(CUT_DataSource& source, const char* remoteName, bool resumes);
  int ReceiveActive(CUT_DataSource& source, const char* remoteName, bool resumes);
  int AskToRestart(CUT_DataSource& source, int& mode);

  int ReceiveListing();
  int ReceiveListingLine(bool& isLast);
  bool AddEntry();
  int FinishListing(int code);

  CUT_WSDataClient m_data;  // keeps the pointer back to this client
  char m_szLastReply[260] = "";
  std::int32_t m_bConnected = 0;
  std::int32_t m_bBinary = 1;  // transfer type image; otherwise ASCII
  std::int32_t m_nTransferMode = 0;
  std::int32_t m_nStructure = 0;
  std::int32_t m_nNextDataPort;
  std::int32_t m_nControlPort = 21;
  std::int32_t m_nConnectTimeout = 5;  // seconds
  std::int32_t m_bPassive = 0;
  CUT_StringList m_replyLines;
  FtpDirEntry* m_pEntries = nullptr;  // owned, as all that follow
  std::int32_t m_nEntries = 0;
  char m_szLine[kFtpLineSize] = "";  // the reply line or listing line received last
  FtpDirEntry* m_pLastEntry = nullptr;
  // A reply may still come that belongs to no command: how long to wait for it before the next one,
  // in seconds; negative when there is none.
  std::int32_t m_nLateReplyWait = -1;
  // The entry asked for last, where the search for a later one begins; null before the first question.
  const FtpDirEntry* m_pFound = nullptr;
  std::int32_t m_nFound = 0;
  std::int32_t m_bPassiveToControl = 0;
};

#endif  // MOSAICON_NET_FTP_CLIENT_H_
