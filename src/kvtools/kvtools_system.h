// The part of KVTools that tells what the program runs on, in texts for a support person.
// Included by kvtools.h. Link kvtools_system; Windows only.
//
// The functions with a buffer copy at most size - 1 characters of 8-bit ANSI text and the terminator
// and cut what is longer. They return the number of characters copied: 0, and an empty text, when what
// they tell about is not there. The texts are English and have no line breaks. They may be called from
// any thread.
#ifndef MOSAICON_KVTOOLS_KVTOOLS_SYSTEM_H_
#define MOSAICON_KVTOOLS_KVTOOLS_SYSTEM_H_

#include <string>
#include <vector>

// The running program's "FileVersion" as its version resource has it for its first translation, in
// whatever form: "1,0,0,0" or "1.0.0.0". Empty when the program has no such resource or text.
int KVT_GetVersionInfo(char* buffer, int size);

// The operating system, e.g. "Windows 10 Pro 22H2 (build 19045.3803), 64 bit". It is the real one,
// whatever the program is compatible with, and bits are the system's. Under Wine its version follows:
// ", Wine 8.0". Parts that cannot be found out are left out; the text is never empty.
int KVT_GetOSInfo(char* buffer, int size);

// Bits per pixel of the primary screen: "32 bit".
int KVT_GetPixelDepth(char* buffer, int size);

// The size of the primary screen in physical pixels, whatever the program knows about scaling:
// "1920 x 1080". When all screens together have another size that follows:
// "1920 x 1080, virtual desktop 3840 x 1080".
int KVT_GetResolution(char* buffer, int size);

// The memory that the system can use, in units of 1,048,576 bytes, rounded down:
// "16384 MB total, 8190 MB available".
int KVT_GetRAMInfo(char* buffer, int size);

// Fills adapters (emptied first) with the descriptions of the display adapters and returns how many
// there are. An adapter with several outputs counts once, two adapters of one model count twice, and
// drivers that only mirror the screen do not count.
int KVT_GetDisplayAdaptersList(std::vector<std::string>& adapters);

#endif  // MOSAICON_KVTOOLS_KVTOOLS_SYSTEM_H_
