// One published data set, as a survey of its remote folder found it. Portable; a plain value.
#ifndef MOSAICON_PUBLISH_REMOTE_DATA_ENTRY_H_
#define MOSAICON_PUBLISH_REMOTE_DATA_ENTRY_H_

#include <string>
#include <vector>

class CRemoteDataEntry {
 public:
  CRemoteDataEntry() = default;
  CRemoteDataEntry(const std::string& folder, const std::string& date) : m_date(date), m_folder(folder) {}
  CRemoteDataEntry(const CRemoteDataEntry&) = default;
  CRemoteDataEntry& operator=(const CRemoteDataEntry&) = default;
  virtual ~CRemoteDataEntry() = default;

  // True when the page can show the data set: it has a date, a folder and a picture, and as many
  // pictures as KML files.
  bool IsComplete() const;

  // Files a name of the folder or of one of its tile folders under the first kind that it contains:
  // "jpg", "googlemaps", "kml", in small letters. Other names are dropped.
  void AddName(const std::string& name);

  std::string m_date;
  std::string m_folder;
  std::vector<std::string> m_jpg;
  std::vector<std::string> m_kml;
  std::vector<std::string> m_googlemaps;
};

#endif  // MOSAICON_PUBLISH_REMOTE_DATA_ENTRY_H_
