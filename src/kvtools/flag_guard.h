// Sets a flag for as long as it lives: what a handler holds while others may run inside it. Portable.
#ifndef MOSAICON_KVTOOLS_FLAG_GUARD_H_
#define MOSAICON_KVTOOLS_FLAG_GUARD_H_

class FlagGuard {
 public:
  explicit FlagGuard(bool& flag) : m_flag(flag) { m_flag = true; }
  ~FlagGuard() { m_flag = false; }
  FlagGuard(const FlagGuard&) = delete;
  FlagGuard& operator=(const FlagGuard&) = delete;

 private:
  bool& m_flag;
};

#endif  // MOSAICON_KVTOOLS_FLAG_GUARD_H_
