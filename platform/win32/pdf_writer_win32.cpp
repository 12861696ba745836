#include "platform/pdf_writer.h"

namespace qxview {

std::unique_ptr<PdfWriter> PdfWriter::Create(const PaperForm&, const OutputSink&, const std::string&, std::string* message) {
  *message = "--pdf is not available on Windows: print writes the lines, and the system's printer to PDF takes them";
  return nullptr;
}

}  // namespace qxview
