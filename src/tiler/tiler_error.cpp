#include "tiler/tiler_error.h"

#include "files/one_line.h"

namespace tiler {

TilerError::TilerError(const std::string& sentence) : std::runtime_error(files::OneLine(sentence)) {}

Stopped::Stopped() : TilerError("the run was stopped before it was complete") {}

}  // namespace tiler
