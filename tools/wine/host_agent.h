// Starts the Linux half of python.exe (python_host.py) in the host's Python.
#ifndef MOSAICON_TOOLS_WINE_HOST_AGENT_H
#define MOSAICON_TOOLS_WINE_HOST_AGENT_H

#include <string>

namespace bridge {

// 32 hexadecimal digits that nobody can guess.
std::string RandomToken();

// Starts python_host.py, which stands beside this program, and tells it the port and the token.
// The interpreter is the Unix path in MOSAICON_HOST_PYTHON, otherwise /usr/bin/python3.
// Returns the empty text, or one line that says what went wrong. Success does not mean that the
// agent works: Wine gives no handle to a Unix process, so only its call at the port shows that.
std::string StartAgent(unsigned short port, const std::string& token);

}  // namespace bridge

#endif
