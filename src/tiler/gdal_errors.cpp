#include "tiler/gdal_errors.h"

#include "files/one_line.h"
#include "tiler/run_log.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

// What the JPEG library goes on after: with pixels of its own invention, or with grey.
bool IsAboutDamage(const std::string& warning) {
  return warning.find("Corrupt JPEG data") != std::string::npos ||
         warning.find("Premature end of JPEG file") != std::string::npos;
}

}  // namespace

GdalErrors::GdalErrors(RunLog& log) : m_log(log) {
  CPLPushErrorHandlerEx(&GdalErrors::Hear, this);
}

GdalErrors::~GdalErrors() {
  CPLPopErrorHandler();
}

void GdalErrors::Check(const std::string& what) const {
  if (!m_failure.empty()) throw TilerError(what + ": " + m_failure);
}

void GdalErrors::Hear(CPLErr kind, CPLErrorNum number, const char* text) {
  auto& self = *static_cast<GdalErrors*>(CPLGetErrorHandlerUserData());
  const std::string line = files::OneLine(text);
  if (kind == CE_None || kind == CE_Debug) {
    self.m_log.Line(line);
    return;
  }
  const bool isFailure = kind >= CE_Failure || IsAboutDamage(line);
  self.m_log.Line((isFailure ? "ERROR " : "Warning ") + std::to_string(number) + ": " + line);
  if (isFailure) self.m_failure = line.empty() ? "error " + std::to_string(number) : line;
}

}  // namespace tiler
