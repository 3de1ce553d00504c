// The part of KVTools that tells what the program runs on, in texts for a support person, and that
// greets the user. Included by kvtools.h. Link kvtools_system; Windows only.
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

// Shows the bitmap with this id of the running program's resources in the middle of the primary
// screen's work area, above all other windows, and dispatches the calling thread's messages until
// milliseconds have passed, the user clicks on the bitmap or on a window of this thread, or presses a
// key that one of them receives. The key is used up; a click on another window still reaches it. The
// bitmap has its own size at 96 dots per inch, grows with the screen's scaling and shrinks to the work
// area; it takes neither focus nor activation and has no button in the task bar.
//
// Returns 1 after the bitmap was shown and is gone again, 0 at once when there is no such bitmap, no
// screen or no time. A WM_QUIT ends it and is left for the outer message loop. A dispatched message
// whose handler takes longer holds up the return; the bitmap then still goes in time when that handler
// dispatches messages. User-interface thread.
int KVT_ShowSplashScreen(int bitmapId, int milliseconds);

#endif  // MOSAICON_KVTOOLS_KVTOOLS_SYSTEM_H_
