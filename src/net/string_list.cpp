#include "net/string_list.h"

#include <string>

struct CUT_StringList::Node {
  std::string text;
  Node* next;
  Node* previous;
};

CUT_StringList::~CUT_StringList() {
  Clear();
}

int CUT_StringList::AddString(const char* text) {
  Node* const node = new Node{text == nullptr ? "" : text, nullptr, m_pLast};
  if (m_pLast == nullptr) {
    m_pFirst = node;
  } else {
    m_pLast->next = node;
  }
  m_pLast = node;
  return 1;
}

int CUT_StringList::GetCount() const {
  int count = 0;
  for (const Node* node = m_pFirst; node != nullptr; node = node->next) ++count;
  return count;
}

const char* CUT_StringList::GetString(int index) const {
  if (index < 0) return nullptr;
  const Node* node = m_pFirst;
  for (int i = 0; i < index && node != nullptr; ++i) node = node->next;
  return node == nullptr ? nullptr : node->text.c_str();
}

void CUT_StringList::Clear() {
  while (m_pFirst != nullptr) {
    Node* const next = m_pFirst->next;
    delete m_pFirst;
    m_pFirst = next;
  }
  m_pLast = nullptr;
}
