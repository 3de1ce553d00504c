#include "mirror/background_publication.h"

#include <exception>
#include <utility>

#include "files/path_text.h"
#include "mirror/curl_store.h"
#include "mirror/folder_store.h"
#include "mirror/web_visitor.h"

namespace mirror {

namespace {

PublicationJob Completed(PublicationJob job) {
  if (job.access.knownHosts.empty()) job.access.knownHosts = job.dataFolder / "known_hosts";
  // What was sent to one user's folder says nothing of another's.
  if (job.address.user.empty()) job.address.user = job.access.user;
  return job;
}

std::unique_ptr<RemoteStore> MakeStore(const PublicationJob& job) {
  if (job.address.scheme == Scheme::kFile) {
    return std::make_unique<FolderStore>(files::PathOf(job.address.path));
  }
  return std::make_unique<CurlStore>(job.address, job.access);
}

}  // namespace

BackgroundPublication::BackgroundPublication(PublicationJob job)
    : m_job(Completed(std::move(job))),
      m_store(MakeStore(m_job)),
      m_publication(std::make_unique<Publication>(*m_store, m_manifest, m_clock, m_job.options)),
      m_thread([this] { Run(); }) {}

BackgroundPublication::~BackgroundPublication() {
  Stop();
  m_thread.join();
}

void BackgroundPublication::Stop() {
  m_isStopped = true;
  m_publication->Stop();
}

void BackgroundPublication::LookOnTheWeb() {
  const auto isStopped = [this] { return m_isStopped.load(); };
  CurlWebVisitor visitor(m_job.access.certificates, isStopped);
  m_web = CheckOnTheWeb(visitor, m_job.webAddress, ReadLocalTree(m_job.folder), isStopped);
}

void BackgroundPublication::Run() {
  try {
    const std::string problem = m_manifest.Open(m_job.dataFolder, m_job.address.Text());
    if (problem.empty()) {
      m_report = m_publication->Run(m_job.folder);
      const bool isPublished = m_report.result == PublicationResult::kPublished;
      if (isPublished && !m_job.webAddress.empty()) LookOnTheWeb();
    } else {
      m_report.reason = problem;
    }
  } catch (const std::exception& failure) {
    m_report = {};
    m_report.reason = failure.what();
  }
  m_isDone = true;
}

bool BackgroundPublication::WasEncrypted() const {
  const auto* store = dynamic_cast<const CurlStore*>(m_store.get());
  return store == nullptr || store->IsEncrypted();
}

std::string BackgroundPublication::UnknownHostKey() const {
  const auto* store = dynamic_cast<const CurlStore*>(m_store.get());
  return store == nullptr ? "" : store->UnknownHostKey();
}

}  // namespace mirror
