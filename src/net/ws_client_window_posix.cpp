// CUT_WSClient: there are no windows here.
#include "net/error_codes.h"
#include "net/ws_client.h"

int CUT_WSClient::CreateNotifyWindow(void* /*module*/) {
  return OnError(kNetFailed);
}

void CUT_WSClient::DestroyNotifyWindow() {}
