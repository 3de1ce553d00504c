// A list of text lines, in the order in which they were added: the lines of a reply, for example. Owns
// copies of the texts. Portable; one thread at a time.
#ifndef MOSAICON_NET_STRING_LIST_H_
#define MOSAICON_NET_STRING_LIST_H_

class CUT_StringList {
 public:
  CUT_StringList() = default;
  CUT_StringList(const CUT_StringList&) = delete;
  CUT_StringList& operator=(const CUT_StringList&) = delete;
  virtual ~CUT_StringList();

  // Appends a copy of text; null counts as "". Always 1.
  int AddString(const char* text);

  int GetCount() const;

  // The text at index, from 0, or null when there is none. Valid until Clear or the list's end.
  const char* GetString(int index) const;

  void Clear();

 private:
  struct Node;

  Node* m_pFirst = nullptr;
  Node* m_pLast = nullptr;  // so that a long reply does not take the square of its length in time
};

#endif  // MOSAICON_NET_STRING_LIST_H_
