// Prints the class and the name of the Windows that it runs on, as the program tells them apart.

#include <iostream>

#include "system/get_os.h"
#include "win32/system_information.h"

int main() {
  zev::win32::Win32System system;
  std::uint8_t isNt62 = 0;
  const int osClass = zev::GetOSClass(system, isNt62);
  std::cout << osClass << ' ' << int{isNt62} << ' ' << zev::toUtf8(zev::GetOSName(system)) << '\n';
}
