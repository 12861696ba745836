// A PDF file of pages, where the libraries that draw them are there.
#pragma once
#include <memory>
#include <string>

#include "core/output_file.h"
#include "paper/pages.h"

namespace qxview {

class PdfWriter {
 public:
  // The title and who made it, in UTF-8, for the document's properties. Null with a message.
  static std::unique_ptr<PdfWriter> Create(const PaperForm& form, const OutputSink& sink, const std::string& title,
                                           std::string* message);
  virtual ~PdfWriter() = default;

  virtual CellSize Cell() const = 0;
  // False when it could not be drawn or written.
  virtual bool Put(const Page& page) = 0;
  // The rest of the file; what was not finished is no PDF file.
  virtual bool Finish() = 0;
};

}  // namespace qxview
