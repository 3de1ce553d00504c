#include "net/ws_data_client.h"

// An owner that overrides the hook for its progress bar can still be aborted.

int CUT_WSDataClient::OnReceiveProgress(long bytes) {
  return m_owner.OnReceiveProgress(bytes) != 0 && !m_owner.IsAborted();
}

int CUT_WSDataClient::OnSendProgress(long bytes) {
  return m_owner.OnSendProgress(bytes) != 0 && !m_owner.IsAborted();
}
