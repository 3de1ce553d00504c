#include <windows.h>

#include <string>
#include <vector>

#include "kvtools/copy_bounded.h"
#include "kvtools/kvtools.h"
#include "kvtools/system_text.h"

namespace {

std::vector<DISPLAY_DEVICEA> DisplayDevices() {
  std::vector<DISPLAY_DEVICEA> devices;
  DISPLAY_DEVICEA device = {};
  device.cb = sizeof device;
  for (DWORD i = 0; EnumDisplayDevicesA(nullptr, i, &device, 0); ++i) devices.push_back(device);
  return devices;
}

bool MirrorsOnly(const DISPLAY_DEVICEA& device) {
  return (device.StateFlags & DISPLAY_DEVICE_MIRRORING_DRIVER) != 0;
}

struct Screens {
  std::vector<PixelRect> all;
  PixelSize primary;
  DWORD bitsPerPixel = 0;  // of the primary screen; 0 when there is none
};

// The display modes, unlike the system metrics, are in physical pixels also for a program that does
// not know about scaling.
Screens CurrentScreens() {
  Screens screens;
  for (const DISPLAY_DEVICEA& device : DisplayDevices()) {
    if (MirrorsOnly(device) || (device.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) == 0) continue;
    DEVMODEA mode = {};
    mode.dmSize = sizeof mode;
    if (!EnumDisplaySettingsA(device.DeviceName, ENUM_CURRENT_SETTINGS, &mode)) continue;
    const PixelSize size = {static_cast<int>(mode.dmPelsWidth), static_cast<int>(mode.dmPelsHeight)};
    screens.all.push_back({mode.dmPosition.x, mode.dmPosition.y, size});
    if ((device.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0) {
      screens.primary = size;
      screens.bitsPerPixel = mode.dmBitsPerPel;
    }
  }
  return screens;
}

}  // namespace

int KVT_GetPixelDepth(char* buffer, int size) {
  const Screens screens = CurrentScreens();
  if (screens.bitsPerPixel == 0) return CopyBounded("", buffer, size);
  return CopyBounded(DescribePixelDepth(screens.bitsPerPixel), buffer, size);
}

int KVT_GetResolution(char* buffer, int size) {
  const Screens screens = CurrentScreens();
  if (screens.bitsPerPixel == 0) return CopyBounded("", buffer, size);
  return CopyBounded(DescribeResolution(screens.primary, EnclosingSize(screens.all)), buffer, size);
}

int KVT_GetDisplayAdaptersList(std::vector<std::string>& adapters) {
  std::vector<DisplayDevice> devices;
  for (const DISPLAY_DEVICEA& each : DisplayDevices()) {
    devices.push_back({each.DeviceString, each.DeviceKey, MirrorsOnly(each)});
  }
  adapters = AdapterDescriptions(devices);
  return static_cast<int>(adapters.size());
}
