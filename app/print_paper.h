// The print command's pages: --pdf and what goes with it.
#pragma once
#include <string>

#include "app/options.h"
#include "paper/packet_pages.h"

namespace qxview {

struct PaperOptions {
  std::string pdf;
  PaperParts parts;   // none of them: the tree
  PaperForm form;
  bool landscape = false;
  std::string given;   // the first of these options that means nothing without --pdf
};

void AddPaperOptions(Command* command, PaperOptions* options);

// The exit status.
int PrintOnPaper(const ReadingOptions& reading, const PaperOptions& options);

}  // namespace qxview
