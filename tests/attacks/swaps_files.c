// Tries without a pause to put its own bytes into files while they are in use by a setup program:
//
//   swaps_files BYTES PATH...
//
// Each path is opened for writing and overwritten with the file BYTES, and, if that is refused,
// replaced by a copy of it. Tells "ready", then each path that it has hit, until it is ended.
#include <stdio.h>
#include <string.h>
#include <windows.h>

enum { most = 1 << 20, paths = 64 };

static char bytes[most];
static int told[paths];

static DWORD readBytes(const char* path) {
  DWORD count = 0;
  HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING, 0, NULL);
  if (file == INVALID_HANDLE_VALUE) return 0;
  if (!ReadFile(file, bytes, most, &count, NULL)) count = 0;
  CloseHandle(file);
  return count;
}

// True if the file is there and now has the bytes.
static int overwrites(const char* path, DWORD count) {
  const DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  DWORD written = 0;
  HANDLE file = CreateFileA(path, GENERIC_WRITE, shared, NULL, TRUNCATE_EXISTING, 0, NULL);
  if (file == INVALID_HANDLE_VALUE) return 0;
  WriteFile(file, bytes, count, &written, NULL);
  CloseHandle(file);
  return written == count;
}

static int replaces(const char* path, const char* source) {
  if (GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES) return 0;
  return DeleteFileA(path) && CopyFileA(source, path, TRUE);
}

int main(int count, char** arguments) {
  const DWORD size = count > 2 ? readBytes(arguments[1]) : 0;
  if (size == 0 || count - 2 > paths) return 2;
  puts("ready");
  fflush(stdout);
  for (;;) {
    for (int each = 2; each < count; ++each) {
      if (!overwrites(arguments[each], size) && !replaces(arguments[each], arguments[1])) continue;
      if (!told[each - 2]) puts(arguments[each]);
      told[each - 2] = 1;
      fflush(stdout);
    }
  }
}
