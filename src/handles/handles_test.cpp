#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "handles/drawing_handles.h"
#include "handles/mapped_view.h"
#include "handles/unique_handle.h"
#include "support/open_handles.h"

namespace {

bool IsOpen(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) != FALSE;
}

HANDLE MakeEvent() {
  return CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

TEST(Handle, IsClosedAtTheEndOfItsScope) {
  const HANDLE event = MakeEvent();
  {
    const UniqueHandle owner(event);
    EXPECT_TRUE(IsOpen(event));
  }
  EXPECT_FALSE(IsOpen(event));
}

TEST(Handle, IsClosedOnceWhoeverHasIt) {
  const HANDLE event = MakeEvent();
  UniqueHandle first(event);
  {
    const UniqueHandle second = std::move(first);
    first.reset();
    EXPECT_TRUE(IsOpen(event));
  }
  EXPECT_FALSE(IsOpen(event));
}

// To CloseHandle, this value would be the process itself.
TEST(Handle, ThatIsInvalidIsLeftAlone) {
  SetLastError(ERROR_FILE_NOT_FOUND);
  { const UniqueHandle none(INVALID_HANDLE_VALUE); }
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST(View, IsUnmappedAtTheEndOfItsScope) {
  const UniqueHandle mapping(
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(int), nullptr));
  void* const place = MapViewOfFile(mapping.get(), FILE_MAP_ALL_ACCESS, 0, 0, 0);
  ASSERT_NE(place, nullptr);
  MEMORY_BASIC_INFORMATION memory = {};
  {
    const MappedView<int> view(static_cast<int*>(place));
    ASSERT_NE(VirtualQuery(place, &memory, sizeof memory), 0U);
    EXPECT_EQ(memory.State, static_cast<DWORD>(MEM_COMMIT));
  }
  ASSERT_NE(VirtualQuery(place, &memory, sizeof memory), 0U);
  EXPECT_EQ(memory.State, static_cast<DWORD>(MEM_FREE));
}

// What the tests of others count with.
TEST(OpenHandles, AreSeenToGrow) {
  std::vector<UniqueHandle> opened;
  EXPECT_TRUE(LeavesMoreAndMoreOpen([&] { opened.emplace_back(MakeEvent()); }));
  UniqueHandle once;
  EXPECT_FALSE(LeavesMoreAndMoreOpen([&] {
    if (once == nullptr) once.reset(MakeEvent());
  }));
}

void DrawOnce() {
  const MemoryContext context(nullptr);
  const GdiObject<HBITMAP> bitmap(CreateBitmap(4, 4, 1, 32, nullptr));
  const GdiObject<HBRUSH> brush(CreateSolidBrush(RGB(1, 2, 3)));
  const Selected picture(context.Get(), bitmap.get());
  const Selected ink(context.Get(), brush.get());
  EXPECT_NE(PatBlt(context.Get(), 0, 0, 4, 4, PATCOPY), FALSE);
  EXPECT_EQ(GetPixel(context.Get(), 1, 1), RGB(1, 2, 3));
}

TEST(DrawingObjects, AreGivenBackInTheRightOrder) {
  DrawOnce();
  const int before = CountGdiObjects();
  for (int i = 0; i < 5; ++i) DrawOnce();
  EXPECT_EQ(CountGdiObjects(), before);
}

TEST(Selection, EndsWithItsScope) {
  const MemoryContext context(nullptr);
  const HGDIOBJ before = GetCurrentObject(context.Get(), OBJ_BRUSH);
  {
    const GdiObject<HBRUSH> brush(CreateSolidBrush(RGB(1, 2, 3)));
    const Selected selected(context.Get(), brush.get());
    EXPECT_EQ(GetCurrentObject(context.Get(), OBJ_BRUSH), brush.get());
  }
  EXPECT_EQ(GetCurrentObject(context.Get(), OBJ_BRUSH), before);
}

}  // namespace
