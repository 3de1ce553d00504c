// A small map on this computer, a server in memory, and publications from one to the other.
#ifndef MOSAICON_MIRROR_TESTING_PUBLICATION_FIXTURE_H_
#define MOSAICON_MIRROR_TESTING_PUBLICATION_FIXTURE_H_

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "mirror/publication.h"
#include "mirror/staged_name.h"
#include "mirror/testing/fake_store.h"
#include "support/temporary_folder.h"

namespace mirror {

class PublicationFixture : public testing::Test {
 protected:
  static constexpr const char* kPlace = "ftp://ann@example.org/maps/valley";

  PublicationFixture() { MakeMap("1"); }

  // All of version 1, or another one.
  void MakeMap(const std::string& version) {
    for (const char* name : {"18/1/2.png", "18/1/3.png", "18/2/2.png", "17/0/1.png", "Valley.jpg"}) {
      Write(name, std::string(name) + " of version " + version);
    }
    for (const char* name : {"17/0/1.kml", "leaflet/map.js", "doc.kml", "leaflet.html"}) {
      Write(name, std::string(name) + " of version " + version);
    }
  }
  static constexpr std::size_t kFiles = 9;
  static constexpr std::size_t kFolders = 7;  // with the one of the map

  // Some seconds ago, as most files of a map.
  void Write(const std::string& name, const std::string& bytes) {
    const std::filesystem::path path = Map() / name;
    std::filesystem::create_directories(path.parent_path());
    WriteFile(path.string(), bytes);
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() - std::chrono::seconds(1000 - ++m_writes));
  }
  void Remove(const std::string& name) const { std::filesystem::remove(Map() / name); }
  std::filesystem::path Map() const { return m_folder.Path("map"); }
  std::filesystem::path Manifests() const { return m_folder.Path("manifests"); }

  PublicationReport Publish(FakeStore& store, const PublicationOptions& options = {}) {
    Manifest manifest;
    EXPECT_EQ(manifest.Open(Manifests(), kPlace), "");
    Publication publication(store, manifest, m_clock, options);
    m_publication = &publication;
    const PublicationReport report = publication.Run(Map());
    m_publication = nullptr;
    return report;
  }
  PublicationReport Publish() { return Publish(m_store); }

  FakeStore::Tree LocalFiles() const {
    FakeStore::Tree files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Map())) {
      const std::string name = entry.path().lexically_relative(Map()).generic_string();
      if (entry.is_directory()) {
        files[name] = {EntryKind::kFolder, ""};
      } else {
        files[name] = {EntryKind::kFile, ReadFile(entry.path().string())};
      }
    }
    return files;
  }

  // Of a visitor's view: whatever page or KML is there shows only what is there and whole, of its own version
  // or, for an old one, of any. What waits under a staged name nobody sees.
  static std::string Harm(const FakeStore::Tree& tree, const std::set<std::string>& tiles,
                          const std::string& oldVersion, const std::string& newVersion) {
    for (const auto& [page, entry] : tree) {
      const bool isNew = entry.bytes.ends_with(newVersion);
      if (RankOf(page) == 0 || entry.kind == EntryKind::kFolder || IsStagedName(page)) continue;
      if (!isNew && !entry.bytes.ends_with(oldVersion)) return page + " is half";
      for (const std::string& tile : tiles) {
        const auto found = tree.find(tile);
        if (found == tree.end()) return page + " shows " + tile + ", which is not there";
        const std::string& bytes = found->second.bytes;
        const bool fits = bytes.ends_with(newVersion) || (!isNew && bytes.ends_with(oldVersion));
        if (!fits) return page + " shows " + tile + ", which is \"" + bytes + "\"";
      }
    }
    return "";
  }

  TemporaryFolder m_folder;
  FakeClock m_clock;
  FakeStore m_store{m_clock};
  Publication* m_publication = nullptr;  // while one runs

 private:
  int m_writes = 0;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_TESTING_PUBLICATION_FIXTURE_H_
