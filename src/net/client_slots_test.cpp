// Others override and call the clients by the order of their functions.
#include <gtest/gtest.h>

#include <type_traits>

#include "net/ftp_client.h"
#include "net/testing/slot_order.h"

namespace {

constexpr int kSocketFunctions = 7;
constexpr int kClientFunctions = 33;
constexpr int kFtpFunctions = 32;

static_assert(std::is_polymorphic_v<CUT_Socket> && sizeof(CUT_Socket) == sizeof(void*), "has no data");
static_assert(sizeof(CUT_WSDataClient) == sizeof(CUT_WSClient) + sizeof(void*), "has its owner only");

TEST(Slots, OfASocketStandInOrder) {
  using Socket = CUT_Socket;
  EXPECT_EQ(Slots(&Socket::OnSocketConnected, &Socket::CloseSocketHandle, &Socket::ShutdownSocket,
                  &Socket::RecvRaw, &Socket::SendRaw, &Socket::HasPendingData, &Socket::WaitReadable),
            SlotsFrom(kFirstSlot, kSocketFunctions));
}

TEST(Slots, OfAClientFollowThoseOfASocket) {
  using Client = CUT_WSClient;
  EXPECT_EQ(
      Slots(&Client::Connect, &Client::ConnectBound, &Client::OpenDatagram, &Client::CreateSocketHandle,
            &Client::CloseConnection, &Client::CreateNotifyWindow, &Client::Listen, &Client::WaitForAccept,
            &Client::AcceptConnection, &Client::SendFromStream, &Client::SendFromSource, &Client::Send,
            &Client::SendAll, &Client::SendInLines, &Client::SendFileByName, &Client::SendDatagram,
            &Client::WaitWritable, &Client::ReceiveToStream, &Client::ReceiveToSource, &Client::Receive,
            &Client::ReceiveAll, &Client::ReceiveFileByName, &Client::ReceiveLine, &Client::DrainInput,
            &Client::ReceiveDatagram, &Client::WaitForReceive, &Client::OnError, &Client::OnReceiveProgress,
            &Client::OnSendProgress, &Client::IsAborted, &Client::OnNotification1, &Client::OnNotification2,
            &Client::OnNotification3),
      SlotsFrom(kFirstSlot + kSocketFunctions, kClientFunctions));
}

TEST(Slots, OfAnFtpClientFollowThoseOfAClient) {
  using Ftp = CUT_FTPClient;
  using ByName = int (Ftp::*)(const char*, const char*);
  EXPECT_EQ(Slots(&Ftp::SendFilePassiveByName, &Ftp::SendFilePassive, &Ftp::ReceiveFilePassiveByName,
                  &Ftp::ReceiveFilePassive, &Ftp::ResumeReceiveFilePassive, &Ftp::ListPassive,
                  &Ftp::ParseUnixListLine, &Ftp::ParseDosListLine, &Ftp::FTPConnect, &Ftp::FTPClose,
                  ByName{&Ftp::ReceiveFileByName}, &Ftp::ReceiveFile, &Ftp::ResumeReceiveFileByName,
                  &Ftp::ResumeReceiveFile, ByName{&Ftp::SendFileByName}, &Ftp::SendFile, &Ftp::RenameFile,
                  &Ftp::DeleteFile, &Ftp::GetCurDir, &Ftp::ChDir, &Ftp::CdUp, &Ftp::MkDir, &Ftp::RmDir,
                  &Ftp::NoOp, &Ftp::List, &Ftp::Help, &Ftp::Quote, &Ftp::GetReplyLineCount,
                  &Ftp::GetReplyLine, &Ftp::GetReplyLineText, &Ftp::GetLastReply, &Ftp::GetLastReplyText),
            SlotsFrom(kFirstSlot + kSocketFunctions + kClientFunctions, kFtpFunctions));
}

TEST(Slots, AreNotTakenByTheSettings) {
  using Ftp = CUT_FTPClient;
  EXPECT_EQ(Slots(&CUT_WSClient::SetReceiveTimeout, &CUT_WSClient::SetSendTimeout,
                  &CUT_WSClient::SetBlockingMode, &CUT_WSClient::IsConnected, &CUT_WSClient::LookUpAddress,
                  &Ftp::SetTransferMode, &Ftp::SetStructure, &Ftp::SetTransferType, &Ftp::GetDirEntry,
                  &Ftp::ClearDirList, &Ftp::GetResponseCode),
            std::vector<int>(11, -1));
}

}  // namespace
