// A thin wrapper around one open file of the operating system. The numbers that it takes are those of
// the Windows file functions. Not buffered, not shared: one thread at a time.
//
// Two implementations, and the program chooses by linking one of them: cut_file_windows.cpp (the
// product) or cut_file_posix.cpp (native tests and fuzzing); what both share is in cut_file.cpp.
// Operations return -1 when the file is closed or the system refuses.
#ifndef MOSAICON_NET_CUT_FILE_H_
#define MOSAICON_NET_CUT_FILE_H_

#include <cstdint>

// The values of GENERIC_READ and GENERIC_WRITE.
inline constexpr std::uint32_t kFileReadAccess = 0x80000000, kFileWriteAccess = 0x40000000;
// The values of CREATE_ALWAYS, OPEN_EXISTING and OPEN_ALWAYS.
inline constexpr std::uint32_t kFileCreateAlways = 2, kFileOpenExisting = 3, kFileOpenAlways = 4;

class CUT_File {
 public:
  CUT_File() = default;
  CUT_File(const CUT_File&) = delete;
  CUT_File& operator=(const CUT_File&) = delete;

  // The order of the virtual functions is part of the interface. The destructor closes the file.
  virtual ~CUT_File();

  // Opens the file for the given access, after closing the one that is open. Others may read it
  // meanwhile, not write. Blanks around the name are not part of it. With append other than 0 every
  // write goes to the end of the file. 0, or -1.
  virtual int Open(const char* name, std::uint32_t access, std::uint32_t disposition, int append);

  // 0; harmless on a closed file.
  virtual int Close();

  // The number of bytes moved, at most 2,147,483,647 at a time; a read returns 0 at the end.
  virtual int Read(void* buffer, std::uint32_t count);
  virtual int Write(const void* buffer, std::uint32_t count);

  // Moves the position, counted from the beginning (0), the current position (1) or the end (2), and
  // returns it. A position must fit 32 bits without sign: where it would be negative or 4,294,967,295
  // and more, nothing moves and the result is -1. So a file above 4 GiB can be read and written from
  // one end to the other, but not appended to.
  virtual std::int64_t Seek(std::int32_t offset, std::uint32_t origin);

  // The low 32 bits of the size.
  virtual std::int64_t GetSize();

 private:
  std::intptr_t m_hFile = -1;  // -1 is the value of INVALID_HANDLE_VALUE: closed
  std::int32_t m_bAppend = 0;
};

#endif  // MOSAICON_NET_CUT_FILE_H_
