// What a job does by itself, without a tool, when the tiling script has ended. An interface of its own, so
// that a driver can be tested without GDAL and without a disk. One thread, the job's.
#ifndef MOSAICON_JOB_FINISHING_STEPS_H_
#define MOSAICON_JOB_FINISHING_STEPS_H_

#include <string>

class FinishingSteps {
 public:
  virtual ~FinishingSteps() = default;
  // RewriteKmlLinks.
  virtual bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                            const std::string& subFolder) = 0;
  // MakePreviewImage; reason is why there is no picture.
  virtual bool MakePreview(const std::string& orthophoto, const std::string& picture,
                           std::string& reason) = 0;
  // IsPreviewImage.
  virtual bool IsPreview(const std::string& path) = 0;
  // Puts a text in the place of a file, if there is one; false when it could not.
  virtual bool WriteText(const std::string& path, const std::string& text) = 0;
};

// Those functions, on real files.
class RealFinishingSteps : public FinishingSteps {
 public:
  bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                    const std::string& subFolder) override;
  bool MakePreview(const std::string& orthophoto, const std::string& picture, std::string& reason) override;
  bool IsPreview(const std::string& path) override;
  bool WriteText(const std::string& path, const std::string& text) override;
};

#endif  // MOSAICON_JOB_FINISHING_STEPS_H_
