#include "publish/remote_data_entry.h"

bool CRemoteDataEntry::IsComplete() const {
  return !m_date.empty() && !m_folder.empty() && !m_jpg.empty() && m_jpg.size() == m_kml.size();
}

void CRemoteDataEntry::AddName(const std::string& name) {
  const auto contains = [&name](const char* part) { return name.find(part) != std::string::npos; };
  if (contains("jpg")) {
    m_jpg.push_back(name);
  } else if (contains("googlemaps")) {
    m_googlemaps.push_back(name);
  } else if (contains("kml")) {
    m_kml.push_back(name);
  }
}
