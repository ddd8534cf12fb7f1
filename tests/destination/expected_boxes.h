#pragma once

#include <string>

#include "destination/on_the_page.h"

namespace zev {

/// The boxes of the check in English, as `told` writes them.
inline std::string emptyBox() {
  return told(u"ZEV Screen Recorder", 64,
              u"Please enter a directory to install ZEV Screen Recorder.");
}
inline std::string forbiddenBox(TextView directory) {
  return told(
      u"ZEV", 48,
      join(u"Folder name cannot contain any of the *,?,<, :, /, | characters. The directory "
           u"name you've entered :\r\n\r\n",
           directory));
}
inline std::string checkDriveBox(TextView root) {
  return told(u"Driver", 4144, join(u"Please check the drive : ", root));
}
inline std::string notMadeBox(TextView directory) {
  return told(u"ZEV", 48, join(u"Error: Could not create directory : \r\n\r\n", directory));
}
inline std::string notAcceptedBox(TextView directory) {
  return told(u"ZEV", 48,
              join(u"Error: Directory name is not accepted. Please check the directory name "
                   u"entered : \r\n\r\n",
                   directory));
}
inline std::string notFoundBox(TextView directory) {
  return told(u"Error", 48, join(directory, u" could not be found!"));
}
inline std::string driveBox(TextView kind) {
  return told(u"Driver", 4144,
              join(u"Screen Recorder can not be installed into a ", kind, u" driver."));
}

}  // namespace zev
