// The error codes that every operation of the network client returns, and the English sentence that
// the user is shown for each. Codes are plain numbers and 0 is success. Only the codes that the client
// itself produces have names here; the others belong to other clients of the same family and are kept
// so that codes and texts stay aligned. Portable; may be called from any thread.
#ifndef MOSAICON_NET_ERROR_CODES_H_
#define MOSAICON_NET_ERROR_CODES_H_

#include <cstdint>

inline constexpr int kNetSuccess = 0, kNetFailed = 1, kNetConnectionFailed = 2, kNetTerminated = 4,
                     kNetConnectTimedOut = 5, kNetLookupFailed = 7, kNetDataPortNotOpened = 8,
                     kNetDenied = 10, kNetDataConnectionFailed = 14, kNetSocketNotOpen = 15,
                     kNetSocketAlreadyOpen = 16, kNetSocketNotCreated = 17, kNetNotBound = 18,
                     kNetNotConnected = 19, kNetTimedOut = 20, kNetReceiveFailed = 21, kNetSendFailed = 22,
                     kNetListenFailed = 23, kNetBadMode = 26, kNetBufferTooShort = 35, kNetNullBuffer = 36,
                     kNetNoResponse = 38, kNetBadIndex = 39, kNetRetrFailed = 48, kNetPortFailed = 49,
                     kNetListFailed = 50, kNetStorFailed = 51, kNetUserRefused = 62, kNetPassRefused = 63,
                     kNetAcctRefused = 64, kNetRnfrRefused = 65, kNetRntoRefused = 66,
                     kNetSourceNotOpened = 81, kNetSourceNotWritten = 83, kNetAborted = 98,
                     kNetBadAddress = 100, kNetParameterTooLong = 105, kNetBadValue = 106,
                     kNetQuoteEmpty = 114, kNetRestRefused = 115, kNetBadCharacters = 137;

class CUT_ERR {
 public:
  // The text of a code: never null, never freed. A code that is not 0 to 151 yields
  // "CUT_ERR::GetErrorString: Array out of bounds!".
  static const char* GetErrorString(std::int32_t code);
};

#endif  // MOSAICON_NET_ERROR_CODES_H_
