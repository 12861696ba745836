/* The decode tree of every packet of a capture, as a C program builds it against the installed library: indented by two
 * blanks a depth, each line with its bytes. */
#include <qxview/qxview.h>
#include <stdio.h>
#include <string.h>

static int32_t PrintLine(void *user, const QxLineInfo *line) {
  char text[8];
  int32_t needed = QxView_LineTextUtf8(user, line->line, text, sizeof text);
  if (needed != line->textLength || strncmp(text, line->text, strlen(text)) != 0) return 1;
  printf("%*s%s [%d, %u]\n", 2 * line->depth, "", line->text, line->offset, line->length);
  return 0;
}

int main(int argc, char **argv) {
  void *capture = NULL;
  QxViewOptions options;
  QxPacket packet;
  void *view;
  int32_t result;
  memset(&options, 0, sizeof options);
  memset(&packet, 0, sizeof packet);
  options.size = sizeof options;
  options.settings = "";
  packet.size = sizeof packet;
  view = QxView_CreateViewWith(&options);
  if (view && argc > 1) capture = QxView_OpenCapture(argv[1]);
  if (!capture) return fprintf(stderr, "%s\n", QxView_LastError()), 1;
  while ((result = QxView_NextPacket(capture, &packet)) == 1) {
    QxView_DecodeFrame(view, packet.record, 0, 0, 0);
    if (QxView_VisitLines(view, PrintLine, view) < 0) return 1;
  }
  if (result < 0) fprintf(stderr, "%s\n", QxView_LastError());
  QxView_DestroyView(view);
  QxView_CloseCapture(capture);
  return result < 0;
}
