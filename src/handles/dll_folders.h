// Where the DLLs of a program come from. Win32.
#ifndef MOSAICON_HANDLES_DLL_FOLDERS_H_
#define MOSAICON_HANDLES_DLL_FOLDERS_H_

#include <windows.h>

// From now on a DLL that is asked for by its name alone is looked for in the folder of the program and in
// that of the system: never in the current folder, which may hold what somebody else has put beside an
// orthophoto, nor along PATH. To be called first of all in a program. DLLs that the program itself is bound
// to are loaded before, and lie in these two folders.
inline void LoadDllsFromOwnAndSystemFolderOnly() {
  SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

#endif  // MOSAICON_HANDLES_DLL_FOLDERS_H_
