#include <ctime>
#include <numeric>
#include <thread>

#include "net/testing/ftp_fixture.h"

namespace {

class FtpList : public FtpTest {
 protected:
  static Script Passive(const std::string& lines) {
    return {AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), SendData(lines), CloseData(), Say("226")};
  }
  FtpDirEntry Entry(int index) {
    FtpDirEntry entry;
    EXPECT_EQ(m_client.GetDirEntry(index, entry), kNetSuccess) << index;
    return entry;
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < m_client.GetDirEntryCount(); ++i) names.emplace_back(Entry(i).name);
    return names;
  }
  using Texts = std::vector<std::string>;
};

constexpr char kListing[] =
    "total 12\r\n"
    "drwxr-xr-x   2 ann      users        4096 Mar 07 2005 tiles\r\n"
    "-rw-r--r--   1 ann      users        4321 Feb 29 2004 a b.txt\r\n"
    "total 13\r\n"
    "12-31-99  11:59PM                 77 old.txt\r\n"
    "01-02-05  09:05AM       <DIR>          new\r\n";

TEST_F(FtpList, ParsesBothStyles) {
  LogInTo(Passive(kListing) + InStep());
  m_client.SetPassive(true);
  EXPECT_EQ(m_client.List(), kNetSuccess);
  ASSERT_EQ(m_client.GetDirEntryCount(), 5);
  EXPECT_EQ(Entry(0).directory, 1);
  EXPECT_STREQ(Entry(0).name, "tiles");
  EXPECT_EQ(Entry(1).size, 4321);
  EXPECT_STREQ(Entry(1).name, "a b.txt");
  EXPECT_EQ(Entry(1).day, 29);
  EXPECT_EQ(Entry(1).month, 2);
  EXPECT_EQ(Entry(1).year, 2004);
  EXPECT_STREQ(Entry(3).name, "old.txt");
  EXPECT_EQ(Entry(3).year, 1999);
  EXPECT_EQ(Entry(3).hour, 23);
  EXPECT_EQ(Entry(4).year, 2005);
  EXPECT_EQ(Entry(4).directory, 1);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Entry(i).next, nullptr) << "a copy stands alone";
  ExpectInStep();
}

TEST_F(FtpList, TakesTheCurrentYearForATime) {
  const std::time_t now = std::time(nullptr);
  LogInTo(Passive("-rw-r--r-- 1 ann users 1 Mar 07 14:05 x\r\n") + InStep());
  m_client.SetPassive(true);
  EXPECT_EQ(m_client.List(), kNetSuccess);
  EXPECT_EQ(Entry(0).year, std::localtime(&now)->tm_year + 1900);
  EXPECT_EQ(Entry(0).hour, 14);
  ExpectInStep();
}

TEST_F(FtpList, WorksInActiveMode) {
  LogInTo(Script{AnswerPort(), Expect("LIST"), ConnectData(), Say("150"), SendData(kListing), CloseData(),
                 Say("226")} +
          InStep());
  EXPECT_EQ(m_client.List(), kNetSuccess);
  EXPECT_EQ(Names(), (Texts{"tiles", "a b.txt", "", "old.txt", "new"}));
  ExpectInStep();
}

TEST_F(FtpList, ReplacesTheEntries) {
  LogInTo(Passive(kListing) + Passive("") + Passive("12-31-99  11:59PM 77 z") + InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess) << "whatever the mode";
  EXPECT_EQ(m_client.GetDirEntryCount(), 5);
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  EXPECT_EQ(m_client.GetDirEntryCount(), 0);
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  EXPECT_EQ(Names(), Texts{"z"}) << "even without a line end";
  FtpDirEntry entry;
  EXPECT_EQ(m_client.GetDirEntry(1, entry), kNetBadIndex);
  EXPECT_EQ(m_client.codes.back(), kNetBadIndex);
  EXPECT_EQ(m_client.GetDirEntry(-1, entry), kNetBadIndex);
  m_client.ClearDirList();
  EXPECT_EQ(m_client.GetDirEntry(0, entry), kNetBadIndex);
  ExpectInStep();
}

TEST_F(FtpList, KeepsTheEntriesWhenThereIsNoDataConnection) {
  LogInTo(Passive(kListing) +
          Script{Expect("PASV"), Say("502 no"), AnswerPasv(), Expect("LIST"), AcceptData(), Say("550 no"),
                 ExpectDataLeft()} +
          InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  EXPECT_EQ(m_client.ListPassive(), kNetPortFailed);
  EXPECT_EQ(m_client.ListPassive(), kNetDataConnectionFailed);
  EXPECT_EQ(m_client.GetDirEntryCount(), 5);
  EXPECT_STREQ(Entry(1).name, "a b.txt");
  ExpectInStep();
}

// Entries with these sizes.
std::string Lines(const std::vector<int>& sizes) {
  std::string lines;
  for (int size : sizes) lines += "01-02-05  09:05AM " + std::to_string(size) + " x\r\n";
  return lines;
}

TEST_F(FtpList, GivesItsEntriesInAnyOrder) {
  LogInTo(Passive(Lines({0, 1, 2, 3, 4})) + InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  for (int index : {2, 0, 1, 1, 4, 3, 4, 0}) EXPECT_EQ(Entry(index).size, index);
  ExpectInStep();
}

// The lists have different lengths, so that their entries hardly lie in the same places.
TEST_F(FtpList, GivesTheEntriesOfTheLastList) {
  LogInTo(Passive(Lines({1, 2, 3, 4, 5})) + Passive(Lines({11, 12})) + Passive(Lines({21, 22, 23})) +
          InStep());
  for (const std::vector<int>& sizes :
       {std::vector<int>{1, 2, 3, 4, 5}, std::vector<int>{11, 12}, std::vector<int>{21, 22, 23}}) {
    EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
    EXPECT_EQ(Entry(0).size, sizes[0]);
    EXPECT_EQ(Entry(1).size, sizes[1]);
    EXPECT_EQ(Entry(0).size, sizes[0]);
  }
  ExpectInStep();
}

TEST_F(FtpList, GivesManyEntriesWithoutDelay) {
  constexpr int kMany = 40000;
  std::vector<int> sizes(kMany);
  std::iota(sizes.begin(), sizes.end(), 0);
  LogInTo(Passive(Lines(sizes)) + InStep());
  ASSERT_EQ(m_client.ListPassive(), kNetSuccess);
  ASSERT_EQ(m_client.GetDirEntryCount(), kMany);
  const Stopwatch watch;
  for (int i = 0; i < kMany; ++i) ASSERT_EQ(Entry(i).size, i);
  EXPECT_LT(watch.Elapsed(), 5000U) << "the square of it";
  ExpectInStep();
}

TEST_F(FtpList, KeepsLinesThatItDoesNotUnderstand) {
  LogInTo(Passive("TOTALLY new\r\nTotal again\r\n\r\n;\r\nx\ny\r\n") + InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  EXPECT_EQ(m_client.GetDirEntryCount(), 5) << "only the first total is skipped";
  ExpectInStep();
}

TEST_F(FtpList, MakesOneEntryOfALongLine) {
  const std::string name(5000, 'n');
  LogInTo(Passive("12-31-99  11:59PM 77 " + name + "\r\n12-31-99  11:59PM 78 next\r\n") + InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  ASSERT_EQ(m_client.GetDirEntryCount(), 2);
  EXPECT_EQ(Entry(0).name, name.substr(0, 260 - 21));
  EXPECT_STREQ(Entry(1).name, "next");
  ExpectInStep();
}

TEST_F(FtpList, MakesOneEntryOfALineThatComesInParts) {
  const std::string name = std::string(238, 'n') + 'y';  // with what precedes it, as long as a line may be
  Script script = {AnswerPasv(), Expect("LIST"), AcceptData(), Say("150")};
  for (const std::string& part :
       Texts{"12-31-99  11:59PM 77 ", "sl", "ow\r\n12-31-99  11:59PM 77 ", name.substr(0, 238), "y\r\n"}) {
    script = script + Script{SendData(part), Wait(200)};
  }
  LogInTo(script + Script{CloseData(), Say("226")} + InStep());
  m_client.SetDataTimeouts(60000, 60000);
  m_time.RunAt(10);  // 2 s pass between the parts
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  m_time.RunAt(1);
  EXPECT_EQ(Names(), (Texts{"slow", name}));
  ExpectInStep();
}

TEST_F(FtpList, JudgesTheFinalReplies) {
  const struct {
    std::vector<std::string> replies;
    int code;
  } cases[] = {{{"200 x"}, kNetSuccess},
               {{"299 x"}, kNetSuccess},
               {{"300 x"}, kNetListFailed},
               {{"426 x"}, kNetListFailed},
               {{"550 x"}, kNetListFailed},
               {{"100 x", "200 x"}, kNetSuccess},
               {{"199 x", "299 x"}, kNetSuccess},
               {{"150 x", "300 x"}, kNetListFailed},
               {{"150 x", "426 x"}, kNetListFailed},
               {{"150 x", "150 y"}, kNetListFailed},
               {{"x"}, kNetNoResponse},
               {{"150 x", "y"}, kNetNoResponse}};
  Script script;
  for (const auto& last : cases) {
    script = script + Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), CloseData()};
    for (const std::string& reply : last.replies) script.push_back(Say(reply));
    if (last.replies.back().starts_with('1')) script.push_back(Say("226 at last"));
  }
  LogInTo(script + InStep());
  for (const auto& last : cases) EXPECT_EQ(m_client.ListPassive(), last.code) << last.replies[0];
  ExpectInStep();
}

TEST_F(FtpList, IsAbortedBetweenLines) {
  const Script endless = {AnswerPasv(), Expect("LIST"), AcceptData(), Say("150")};
  LogInTo(endless + Script{SendDataForEver("12-31-99  11:59PM 77 z\r\n"), Say("426")} + endless +
          Script{SendDataForEver(std::string(1000, 'x')), Say("426")} + InStep());
  m_client.abortAfterQuestions = m_client.abortQuestions + 200;
  EXPECT_EQ(m_client.ListPassive(), kNetAborted);
  EXPECT_GT(m_client.GetDirEntryCount(), 100);
  m_client.abortAfterQuestions = m_client.abortQuestions + 200;
  EXPECT_EQ(m_client.ListPassive(), kNetAborted) << "a line without end";
  EXPECT_EQ(m_client.GetDirEntryCount(), 1);
  m_client.abortAfterQuestions = std::numeric_limits<int>::max();
  ExpectInStep();
}

TEST_F(FtpList, IsAbortedWithinALineThatComesSlowly) {
  const auto trickle = [](ScriptedServer::Stage& stage) {
    for (int i = 0; i < 600 && stage.data.Say("x"); ++i) SleepFor(100);
    return true;
  };
  LogInTo(Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), trickle, CloseData(), Say("426")} +
          InStep());
  std::thread later([&] {
    SleepFor(500);
    m_client.aborted = true;
  });
  const Stopwatch watch;
  EXPECT_EQ(m_client.ListPassive(), kNetAborted);
  EXPECT_LT(watch.Elapsed(), 15000U) << "the line takes 26 s";
  later.join();
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpList, GivesUpALineWithoutEnd) {
  LogInTo(Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"),
                 SendDataForEver(std::string(1000, 'x')), Say("426")} +
          InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetListFailed);
  EXPECT_EQ(m_client.GetDirEntryCount(), 1);
  ExpectInStep();
}

TEST_F(FtpList, TakesALineOfMegabytes) {
  LogInTo(Passive(std::string(10000 * (kFtpLineSize - 1), 'x') + "\r\ny") + InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetSuccess);
  EXPECT_EQ(m_client.GetDirEntryCount(), 2);
  ExpectInStep();
}

TEST_F(FtpList, IsAbortedBeforeTheFirstLine) {
  LogInTo(Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), SendData("x\r\n"), ExpectDataLeft(),
                 Say("426")} +
          InStep());
  m_client.aborted = true;
  EXPECT_EQ(m_client.ListPassive(), kNetAborted);
  EXPECT_EQ(m_client.GetDirEntryCount(), 0);
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpList, EndsWithTheReceiveTimeOutOnASilentDataConnection) {
  LogInTo(Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), SendData("x\r\nhal"),
                 ExpectDataLeft(), Say("426 slow")} +
          InStep());
  m_client.SetDataTimeouts(1000, 1000);
  EXPECT_EQ(m_client.ListPassive(), kNetListFailed);
  EXPECT_EQ(m_client.GetDirEntryCount(), 2);
  ExpectInStep();
}

TEST_F(FtpList, ReportsAConnectionThatIsReset) {
  LogInTo(Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), SendData("x\r\n"), Wait(300),
                 ResetData(), Say("426 reset")} +
          InStep());
  EXPECT_EQ(m_client.ListPassive(), kNetListFailed);
  ExpectInStep();
}

TEST_F(FtpList, JudgesThePreliminaryReplyInActiveMode) {
  Script script;
  for (const char* reply : {"300", "450", "550", "x"}) {
    script = script + Script{AnswerPort(), Expect("LIST"), ConnectData(), Say(reply), ExpectDataLeft()};
  }
  for (const char* reply : {"100", "299"}) {
    script =
        script + Script{AnswerPort(), Expect("LIST"), ConnectData(), Say(reply), CloseData(), Say("226")};
  }
  LogInTo(script + InStep());
  for (int code : {kNetDataConnectionFailed, kNetDataConnectionFailed, kNetDataConnectionFailed,
                   kNetNoResponse, kNetSuccess, kNetSuccess}) {
    EXPECT_EQ(m_client.List(), code);
  }
  ExpectInStep();
}

TEST_F(FtpList, WaitsFifteenSecondsForAServerThatDoesNotCome) {
  LogInTo(Script{AnswerPort(), Expect("LIST"), Say("450 no such folder")} + InStep());
  const Stopwatch watch;
  EXPECT_EQ(m_client.List(), kNetDataConnectionFailed);
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{15000});
  EXPECT_GE(watch.Elapsed(), 14900U);
  EXPECT_STREQ(m_client.GetLastReplyText(), "450 no such folder");
  ExpectInStep();
}

}  // namespace
