// Owns one reference to a COM object.
#ifndef MOSAICON_MFC_COM_POINTER_H_
#define MOSAICON_MFC_COM_POINTER_H_

#include <unknwn.h>

#include <memory>

namespace afx {

struct ComReleaser {
  void operator()(IUnknown* object) const { object->Release(); }
};

template <class Interface>
using ComPointer = std::unique_ptr<Interface, ComReleaser>;

}  // namespace afx

#endif  // MOSAICON_MFC_COM_POINTER_H_
