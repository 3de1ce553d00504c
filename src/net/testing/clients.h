// A socket client whose hooks a test can look at and steer, and a data source in memory that fails on
// demand. Test code.
#ifndef MOSAICON_NET_TESTING_CLIENTS_H_
#define MOSAICON_NET_TESTING_CLIENTS_H_

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "net/data_source.h"
#include "net/error_codes.h"

// Base is CUT_WSClient or CUT_FTPClient.
template <class Base>
class Watched : public Base {
 public:
  int OnError(int code) override {
    codes.push_back(code);
    return code;
  }
  int OnReceiveProgress(long bytes) override {
    progress.push_back(bytes);
    return bytes < stopAtBytes && (hooksGoOn || Base::OnReceiveProgress(bytes) != 0);
  }
  int OnSendProgress(long bytes) override {
    progress.push_back(bytes);
    return bytes < stopAtBytes && (hooksGoOn || Base::OnSendProgress(bytes) != 0);
  }
  int IsAborted() override {
    const int asked = ++abortQuestions;
    return aborted || asked > abortAfterQuestions;
  }

  bool HasSeen(int code) const { return std::find(codes.begin(), codes.end(), code) != codes.end(); }

  std::vector<int> codes;
  std::vector<long> progress;
  long stopAtBytes = std::numeric_limits<long>::max();
  bool hooksGoOn = false;  // whatever IsAborted says
  std::atomic<bool> aborted = false;
  int abortQuestions = 0;
  int abortAfterQuestions = std::numeric_limits<int>::max();
};

class FakeSource : public CUT_DataSource {
 public:
  explicit FakeSource(std::string content = "") : bytes(std::move(content)) {}

  CUT_DataSource* Clone() override { return new FakeSource(bytes); }
  int Open(int mode) override {
    modes.push_back(mode);
    if (mode == refusedMode) return -1;
    ++openNow;
    if (mode == kSourceWrite) bytes.clear();
    position = mode == kSourceAppend ? bytes.size() : 0;
    return 0;
  }
  int Close() override {
    --openNow;
    return 0;
  }
  int ReadLine(char*, size_t) override { return -1; }
  int WriteLine(const char*) override { return -1; }
  int Read(char* buffer, size_t count) override {
    largestRead = std::max(largestRead, count);
    if (position >= failingFrom) return -1;
    const size_t taken = std::min(count, bytes.size() - position);
    std::memcpy(buffer, bytes.data() + position, taken);
    position += taken;
    return static_cast<int>(taken);
  }
  int Write(const char* buffer, size_t count) override {
    if (position + count > failingFrom) count = failingFrom - position;
    bytes.append(buffer, count);
    position += count;
    return static_cast<int>(count);
  }
  long Seek(long offset, int origin) override {
    if (failsToSeek) return -1;
    const size_t from = origin == kSeekBegin ? 0 : origin == kSeekCurrent ? position : bytes.size();
    position = from + static_cast<size_t>(offset);
    return static_cast<long>(position);
  }

  std::string bytes;
  std::vector<int> modes;  // of every attempt to open
  int openNow = 0;
  int refusedMode = -1;
  size_t failingFrom = std::numeric_limits<size_t>::max();
  size_t largestRead = 0;
  bool failsToSeek = false;
  size_t position = 0;
};

#endif  // MOSAICON_NET_TESTING_CLIENTS_H_
