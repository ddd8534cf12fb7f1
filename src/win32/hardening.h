#pragma once

namespace zev::win32 {

/// Takes the folder of the program and the current folder out of the search for libraries, and
/// loads the themed controls from the system's own folder. To be called before anything else.
void harden();

}  // namespace zev::win32
