// Others implement and call these interfaces by the order of their functions.
#include <gtest/gtest.h>

#include <type_traits>

#include "net/cut_file.h"
#include "net/data_source.h"
#include "net/string_list.h"
#include "net/testing/slot_order.h"

namespace {

TEST(Slots, OfAFileStandInOrder) {
  EXPECT_EQ(Slots(&CUT_File::Open, &CUT_File::Close, &CUT_File::Read, &CUT_File::Write, &CUT_File::Seek,
                  &CUT_File::GetSize),
            SlotsFrom(kFirstSlot, 6));
}

TEST(Slots, OfADataSourceStandInOrder) {
  using Source = CUT_DataSource;
  EXPECT_EQ(Slots(&Source::Clone, &Source::Open, &Source::Close, &Source::ReadLine, &Source::WriteLine,
                  &Source::Read, &Source::Write, &Source::Seek, &Source::Find),
            SlotsFrom(kFirstSlot, 9));
  EXPECT_TRUE(std::is_abstract_v<Source>);
}

TEST(Slots, OfAStringListAreTheDestructorsOnly) {
  EXPECT_TRUE(std::has_virtual_destructor_v<CUT_StringList>);
  EXPECT_EQ(Slots(&CUT_StringList::AddString, &CUT_StringList::GetCount, &CUT_StringList::GetString),
            (std::vector<int>{-1, -1, -1}));
}

}  // namespace
