// Windows Sockets: its header in the order that it needs, and its start-up in one place. Win32.
#ifndef MOSAICON_NET_WINSOCK_H_
#define MOSAICON_NET_WINSOCK_H_

#include <winsock2.h>
// After winsock2.h.
#include <windows.h>

// Asks for version 1.1 and fills record. The system counts: every start that returns true needs one
// StopWinsock. Any thread.
bool StartWinsock(WSADATA& record);
void StopWinsock();

#endif  // MOSAICON_NET_WINSOCK_H_
