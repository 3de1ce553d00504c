// A disk that is full: as long as it lives, writing fails beyond so many bytes of a file. Not for Windows.
#ifndef MOSAICON_TESTS_SUPPORT_FILE_SIZE_LIMIT_H_
#define MOSAICON_TESTS_SUPPORT_FILE_SIZE_LIMIT_H_

#include <sys/resource.h>

#include <csignal>

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit m_before = {};
};

#endif  // MOSAICON_TESTS_SUPPORT_FILE_SIZE_LIMIT_H_
