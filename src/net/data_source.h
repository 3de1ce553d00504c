// What a transfer reads from or writes to. The FTP client never touches a file: it talks to this
// interface. Portable; an object belongs to one thread at a time.
//
// Operations return -1 when they fail (null argument, closed source, unknown mode, the system's
// refusal); none of them throws.
#ifndef MOSAICON_NET_DATA_SOURCE_H_
#define MOSAICON_NET_DATA_SOURCE_H_

#include <cstddef>

// How a source is opened.
inline constexpr int kSourceRead = 0, kSourceWrite = 1, kSourceAppend = 2;  // write: create or truncate

// Where Seek counts from.
inline constexpr int kSeekBegin = 0, kSeekCurrent = 1, kSeekEnd = 2;

class CUT_DataSource {
 public:
  CUT_DataSource() = default;
  CUT_DataSource(const CUT_DataSource&) = delete;
  CUT_DataSource& operator=(const CUT_DataSource&) = delete;

  // The order of the virtual functions is part of the interface.
  virtual ~CUT_DataSource() = default;

  // A new, unopened source of the same kind with the same settings. The caller owns it (delete);
  // null when there is no memory.
  virtual CUT_DataSource* Clone() = 0;

  // 0, or -1.
  virtual int Open(int mode) = 0;
  virtual int Close() = 0;

  // Puts at most size - 1 bytes and a terminator into buffer and returns the number of bytes: one line
  // with its line end, a part of a longer one, or 0 and an empty text at the end.
  virtual int ReadLine(char* buffer, size_t size) = 0;
  // Writes text, and a line end unless it brings one. Returns the bytes of text written.
  virtual int WriteLine(const char* text) = 0;

  // The number of bytes moved; a read returns 0 at the end. Both may move fewer than count.
  virtual int Read(char* buffer, size_t count) = 0;
  virtual int Write(const char* buffer, size_t count) = 0;

  // Moves the position and returns it. Positions are 32-bit numbers: beyond 2,147,483,647 the result
  // is -1, wherever the source stands then.
  virtual long Seek(long offset, int origin) = 0;

  // The position of the first occurrence of text at or after start, or -1. Letter case matters when
  // caseSensitive is not 0 (only A to Z have case). With a maxRange other than 0 an occurrence that
  // begins more than maxRange bytes after start does not count. Texts of 4,096 characters or more are
  // refused. A source that holds text and nothing after start but it yields -1: a kept limit.
  // The position is somewhere behind the occurrence afterwards.
  virtual long Find(const char* text, long start, int caseSensitive, size_t maxRange);
};

#endif  // MOSAICON_NET_DATA_SOURCE_H_
