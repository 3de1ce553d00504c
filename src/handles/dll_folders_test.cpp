#include "handles/dll_folders.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The only thing in this program that loads by name: what it sets is set for good.
TEST(DllFolders, TheCurrentFolderIsNoneOfThem) {
  char folder[MAX_PATH];
  GetTempPathA(sizeof folder, folder);
  const std::string place = folder + std::string("mosaicon dll folders");
  const std::string stray = place + "\\mosaicon_stray.dll";
  char library[MAX_PATH];
  GetSystemDirectoryA(library, sizeof library);
  CreateDirectoryA(place.c_str(), nullptr);
  ASSERT_TRUE(CopyFileA((std::string(library) + "\\version.dll").c_str(), stray.c_str(), FALSE));
  char before[MAX_PATH];
  GetCurrentDirectoryA(sizeof before, before);
  ASSERT_TRUE(SetCurrentDirectoryA(place.c_str()));

  const HMODULE first = LoadLibraryA("mosaicon_stray.dll");
  EXPECT_NE(first, nullptr) << "it is there to be found";
  FreeLibrary(first);
  LoadDllsFromOwnAndSystemFolderOnly();
  EXPECT_EQ(LoadLibraryA("mosaicon_stray.dll"), nullptr);
  const HMODULE ofSystem = LoadLibraryA("winmm.dll");
  EXPECT_NE(ofSystem, nullptr);
  FreeLibrary(ofSystem);

  SetCurrentDirectoryA(before);
  DeleteFileA(stray.c_str());
  RemoveDirectoryA(place.c_str());
}

}  // namespace
