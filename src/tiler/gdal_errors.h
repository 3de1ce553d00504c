// What GDAL complains of in one thread.
#ifndef MOSAICON_TILER_GDAL_ERRORS_H_
#define MOSAICON_TILER_GDAL_ERRORS_H_

#include <cpl_error.h>

#include <string>

namespace tiler {

class RunLog;

// Hears what GDAL complains of in the thread that made it, as long as it exists: all of it goes to the log,
// nothing to the screen. A call of GDAL can return well and have failed all the same, for example one that
// reads pixels of a damaged file; so the question after it is Failure().
class GdalErrors {
 public:
  explicit GdalErrors(RunLog& log);
  ~GdalErrors();
  GdalErrors(const GdalErrors&) = delete;
  GdalErrors& operator=(const GdalErrors&) = delete;

  // The text of the last failure since Forget(); warnings are none, but for those of damaged pixels. Empty:
  // there was none.
  const std::string& Failure() const { return m_failure; }
  void Forget() { m_failure.clear(); }
  // Throws TilerError with this text and the failure, when there was one.
  void Check(const std::string& what) const;

 private:
  static void CPL_STDCALL Hear(CPLErr kind, CPLErrorNum number, const char* text);

  RunLog& m_log;
  std::string m_failure;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_GDAL_ERRORS_H_
