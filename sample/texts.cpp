#include "sample/texts.h"

#include <stdexcept>

namespace zev::sample {
namespace {

constexpr std::size_t kPathOffset = 25;
constexpr std::size_t kPathLength = 512;

constexpr std::string_view kManifestHead =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity version="6.0.0.21" processorArchitecture="*" name="Tavorns.ScreenRecorder" type="win32"/>
  <description>ZEV Screen Recorder 6</description>
  <dependency>
    <dependentAssembly>
      <assemblyIdentity type="win32" name="Microsoft.Windows.Common-Controls" version="6.0.0.0" processorArchitecture="*" publicKeyToken="6595b64144ccf1df" language="*"/>
    </dependentAssembly>
  </dependency>
  <trustInfo xmlns="urn:schemas-microsoft-com:asm.v3">
    <security>
      <requestedPrivileges>
        <requestedExecutionLevel level="asInvoker" uiAccess="false"/>
      </requestedPrivileges>
    </security>
  </trustInfo>
  <!-- build )";

constexpr std::string_view kProjectBody = R"([Project]
Title=Sample Project
Program=ZEV Reel Desk
FrameRate=10
Width=320
Height=240

[Video]
Source=1
Start=0
Volume=100

[TimeLine]
Clip1=0,1500,Source,Cut
Title1=200,1200,Welcome to ZEV Reel Desk,Fade
Clip2=1500,4200,Source,Dissolve
Arrow1=1800,2600,120,84,Red
Note1=2700,3900,Drag the edge of a clip to shorten it,Slide
Zoom1=2900,3600,40,30,160,120

[Cursor]
Highlight=Yellow
LeftClick=MCD116m.wav
LeftRelease=MCU116m.wav

[Keyboard]
Sound=Key1116m.wav
Show=1

[Export]
Format=AVI
Quality=85
Player=VideoPlayer.zev
)";

std::string withLineEnds(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '\n') out += '\r';
    out += c;
  }
  return out;
}

}  // namespace

std::string makeApplicationManifest(std::string_view buildId) {
  return withLineEnds(std::string(kManifestHead) + std::string(buildId) + " -->\n</assembly>\n");
}

std::string makeProject(std::string_view thumbnail) {
  std::string project = withLineEnds("ZEV Reel Desk Project 6\n");
  if (project.size() != kPathOffset) throw std::logic_error("project head of a wrong length");
  project.append(kPathLength, ' ');
  project += withLineEnds("\n");
  project += withLineEnds(kProjectBody);
  return project + withLineEnds("\n[Thumbnail]\nData=" + std::string(thumbnail) + "\n");
}

}  // namespace zev::sample
