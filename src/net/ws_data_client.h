// The data connection of another client: it reports its progress to that client, whose hooks decide
// whether the transfer goes on. Portable; belongs to the owner and its thread.
#ifndef MOSAICON_NET_WS_DATA_CLIENT_H_
#define MOSAICON_NET_WS_DATA_CLIENT_H_

#include "net/ws_client.h"

class CUT_WSDataClient : public CUT_WSClient {
 public:
  explicit CUT_WSDataClient(CUT_WSClient& owner) : m_owner(owner) {}  // borrowed

  int OnReceiveProgress(long bytes) override;
  int OnSendProgress(long bytes) override;

  using CUT_WSClient::CloseAccepted;
  using CUT_WSClient::PresetTimeouts;
  using CUT_WSClient::RemoteIp;

 private:
  CUT_WSClient& m_owner;
};

#endif  // MOSAICON_NET_WS_DATA_CLIENT_H_
