// A publication in a thread of its own, for who shows how far it is: a window, or a console. All functions
// belong to the thread that made it.
#ifndef MOSAICON_MIRROR_BACKGROUND_PUBLICATION_H_
#define MOSAICON_MIRROR_BACKGROUND_PUBLICATION_H_

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "mirror/publication.h"
#include "mirror/publish_address.h"
#include "mirror/server_access.h"
#include "mirror/web_check.h"

namespace mirror {

struct PublicationJob {
  PublishAddress address;  // of the folder itself
  ServerAccess access;     // but for knownHosts, which lies in dataFolder unless it is named
  std::filesystem::path folder;
  std::filesystem::path dataFolder;  // of the user: manifests, keys of hosts
  std::string webAddress;            // of the folder, to look at it there in the end; may be empty
  PublicationOptions options;
};

class BackgroundPublication {
 public:
  // Begins at once.
  explicit BackgroundPublication(PublicationJob job);
  // Stops it, and waits for that: at most two seconds, but for a name that is being looked up.
  ~BackgroundPublication();
  BackgroundPublication(const BackgroundPublication&) = delete;
  BackgroundPublication& operator=(const BackgroundPublication&) = delete;

  bool IsDone() const { return m_isDone; }
  void Stop();
  PublicationProgress Progress() const { return m_publication->Progress(); }

  // The rest is for afterwards.
  const PublicationReport& Report() const { return m_report; }
  // Of what was published, and has a web address.
  const WebReport& Web() const { return m_web; }
  bool WasEncrypted() const;
  // Of a host that nobody knows yet: whoever trusts it tries again with this accepted. Empty otherwise.
  std::string UnknownHostKey() const;

 private:
  void Run();
  void LookOnTheWeb();

  const PublicationJob m_job;
  std::unique_ptr<RemoteStore> m_store;
  Manifest m_manifest;
  Clock m_clock;
  std::unique_ptr<Publication> m_publication;
  PublicationReport m_report;
  WebReport m_web;
  std::atomic<bool> m_isStopped = false;
  std::atomic<bool> m_isDone = false;
  std::thread m_thread;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_BACKGROUND_PUBLICATION_H_
