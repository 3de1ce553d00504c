// KVTools, the tools library that the whole program shares: the KVT_ functions and nothing else.
//
// All text is 8-bit text in the Windows ANSI code page. Unless a function says otherwise it may be
// called from any thread. Nothing here throws for bad input.
//
// The profile functions have two implementations, and the program chooses by linking one of them:
// profile_registry.cpp (the user's registry) or profile_memory.cpp (forgets everything at exit).
//
// What tells about the machine and the running program has a header of its own, included here.
#ifndef MOSAICON_KVTOOLS_KVTOOLS_H_
#define MOSAICON_KVTOOLS_KVTOOLS_H_

#include <functional>
#include <string>
#include <vector>

#include "kvtools/kvtools_system.h"

// --- Settings --------------------------------------------------------------------------------

// Copies the text stored under section and key into buffer, or defaultValue when none is stored.
// At most size - 1 characters and the terminator are written; longer text is cut. Returns the
// number of characters copied. A null default counts as "".
int KVT_GetUserProfileString(const char* section, const char* key, const char* defaultValue, char* buffer,
                             int size);

// Stores value under section and key for the current user. Returns false when it could not.
bool KVT_WriteUserProfileString(const char* section, const char* key, const char* value);

// Names the product whose settings the two functions above use ("Mosaicon" until then). Every
// program that must not touch the window's settings (the batch program, each test) calls it first,
// before any other thread exists.
void KVT_SetProfileProduct(const char* product);

// --- Text ------------------------------------------------------------------------------------

// Splits text at every separator into parts (emptied first) and returns how many there are. Two
// separators in a row, or one at either end, make an empty part; an empty text has no parts.
int KVT_ParseString(const std::string& text, char separator, std::vector<std::string>& parts);

// Converts a decimal number ("12", "-0.5", "+1e3", blanks around it allowed) whatever the locale.
// Returns 1 and sets *value; returns 0 and leaves *value alone when the whole text is not one finite
// number that a double can hold: "", "12abc", "1e400", "nan", "inf", "0x10", or a null pointer.
int KVT_StringToDouble(const char* text, double* value);

// --- Paths -----------------------------------------------------------------------------------

// Derives a file path from path: folder replaces its drive and directory, extension (with or
// without the dot) its extension, and suffix is added to its name. A null pointer keeps what is
// there. "d:\a\b.tif" with extension "vrt" and suffix "2" is "d:\a\b2.vrt".
std::string KVT_TranslatePath(const std::string& path, const char* folder, const char* extension,
                              const char* suffix);

// Normalises a folder path: "/" becomes "\" and repeated "\" become one (the pair that begins a
// network path stays). With flag 1 the result ends in exactly one "\", so that splitting it yields
// the whole folder as its directory; with flag 0 it ends in none, save for a drive root.
// An empty path stays empty.
std::string KVT_OptimizePath(const std::string& path, int flag);

// --- Files -----------------------------------------------------------------------------------

// How many files a folder holds; folders do not count. With withSubfolders 1 those in all its
// subfolders count too, with 0 only its own. Hidden files count, and links to folders are gone into as
// any walk through the folder would. What is no folder holds 0; a folder that cannot be read, or not to its
// end, counts as one more file, so that nobody takes it for one that holds nothing. onFolder, when given, is
// called before each folder is read; false ends the count.
int KVT_CountFileInFolder(const std::string& path, int withSubfolders,
                          const std::function<bool()>& onFolder = nullptr);

// The path of the system's folder with this number (a CSIDL; 35 is the application data that all users
// share), without "\" at its end unless it is a drive root. The folder is made when it is missing. Empty
// when there is no such folder. Windows only; link kvtools_folders.
std::string KVT_GetSpecialFolder(int csidl);

// --- Time ------------------------------------------------------------------------------------

// One stop watch for the process: start it, and read it as often as needed. User-interface thread.
void KVT_StartTimer();

// The time since KVT_StartTimer as "hh:mm:ss", whole seconds, hours without upper limit.
std::string KVT_GetElapsedTime();

// The current date and time as "2026-11-21 15:04", which is read alike everywhere. With dateOnly 1 it is
// the date alone; with universalTime 1 it is UTC and no longer the local time. Empty when the clock shows
// no date that can be written. User-interface thread.
std::string KVT_GetCurrentSysDate(int dateOnly, int universalTime);

// --- Windows ---------------------------------------------------------------------------------

// Dispatches all pending messages of the calling thread and returns. A caller that does nothing but
// pump, and comes back at once when none was pending, leaves the machine to others: it waits until input
// arrives, for at most 10 ms. A pending WM_QUIT is left for the outer message loop.
void KVT_PumpMessages();

#endif  // MOSAICON_KVTOOLS_KVTOOLS_H_
