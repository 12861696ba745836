#include "app/view/screen.h"

#define NCURSES_NOMACROS
#include <curses.h>
#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "core/characters.h"
#include "core/digits.h"

namespace qxview {
namespace {

struct Look {
  int16_t front, back;   // of 256 colours; -1: the terminal's own
  attr_t attributes;
};
using Palette = Look[static_cast<size_t>(Style::kStyles)];

constexpr Palette kDark = {
    {-1, -1, 0}, {252, 236, 0}, {255, 236, A_BOLD}, {231, 24, A_BOLD},
    {255, 239, 0}, {245, -1, 0}, {114, -1, 0}, {203, -1, 0},
    {220, -1, A_BOLD}, {16, 215, A_BOLD}, {117, -1, 0}, {114, -1, 0},
    {80, -1, 0}, {141, -1, 0}, {179, -1, 0}, {213, -1, 0},
    {111, -1, 0}, {203, -1, A_BOLD}};
constexpr Palette kLight = {
    {-1, -1, 0}, {16, 252, 0}, {16, 252, A_BOLD}, {231, 25, A_BOLD},
    {16, 254, 0}, {242, -1, 0}, {28, -1, 0}, {160, -1, 0},
    {130, -1, A_BOLD}, {16, 222, A_BOLD}, {25, -1, 0}, {28, -1, 0},
    {30, -1, 0}, {99, -1, 0}, {130, -1, 0}, {163, -1, 0},
    {27, -1, 0}, {160, -1, A_BOLD}};
constexpr Palette kSixteen = {
    {-1, -1, 0}, {-1, -1, A_REVERSE}, {-1, -1, A_REVERSE | A_BOLD}, {7, 4, A_BOLD},
    {-1, -1, A_REVERSE}, {-1, -1, A_DIM}, {2, -1, 0}, {1, -1, A_BOLD},
    {3, -1, A_BOLD}, {0, 3, 0}, {6, -1, 0}, {2, -1, 0},
    {6, -1, 0}, {5, -1, 0}, {3, -1, 0}, {5, -1, 0},
    {4, -1, 0}, {1, -1, A_BOLD}};
constexpr Palette kNone = {
    {-1, -1, 0}, {-1, -1, A_REVERSE}, {-1, -1, A_REVERSE | A_BOLD}, {-1, -1, A_REVERSE | A_BOLD},
    {-1, -1, A_UNDERLINE}, {-1, -1, A_DIM}, {-1, -1, 0}, {-1, -1, A_BOLD},
    {-1, -1, A_BOLD}, {-1, -1, A_REVERSE}, {-1, -1, 0}, {-1, -1, 0},
    {-1, -1, 0}, {-1, -1, 0}, {-1, -1, 0}, {-1, -1, 0},
    {-1, -1, 0}, {-1, -1, A_BOLD}};
const Palette* palette = &kNone;
bool hasColors = false;

volatile std::sig_atomic_t interrupted = 0, ended = 0, isOpen = 0;
termios before;   // of the terminal when the screen was opened

void NoteSignal(int number) {
  if (number == SIGINT) interrupted = 1;
  else ended = number;
}

// What went wrong beyond help is told on a terminal that shows it.
void LeaveOnFault(int number) {
  LeaveScreenAtOnce();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void HandleSignals() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    action.sa_handler = NoteSignal;
    sigaction(number, &action, nullptr);
  }
  for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) std::signal(number, LeaveOnFault);
}

// The palette's nearest that the terminal has.
const Palette& PaletteOf(Theme theme) {
  const char* noColor = std::getenv("NO_COLOR");
  hasColors = has_colors() && !(noColor && noColor[0]) && theme != Theme::kNone;
  if (!hasColors) return kNone;
  if (theme == Theme::kSixteen || COLORS < 256) return kSixteen;
  if (theme != Theme::kAuto) return theme == Theme::kLight ? kLight : kDark;
  const char* told = std::getenv("COLORFGBG");   // "15;0": some terminals tell their colours so
  const char* back = told ? std::strrchr(told, ';') : nullptr;
  return back && (std::strcmp(back, ";7") == 0 || std::strcmp(back, ";15") == 0) ? kLight : kDark;
}

void TakePalette(Theme theme) {
  if (has_colors()) start_color(), use_default_colors();
  palette = &PaletteOf(theme);
  for (int16_t i = 1; hasColors && i < static_cast<int16_t>(Style::kStyles); ++i) {
    init_pair(i, (*palette)[i].front, (*palette)[i].back);
  }
}

int32_t CodeOfCurses(wint_t code) {
  switch (code) {
    case KEY_UP: return kKeyUp;
    case KEY_DOWN: return kKeyDown;
    case KEY_LEFT: return kKeyLeft;
    case KEY_RIGHT: return kKeyRight;
    case KEY_PPAGE: return kKeyPageUp;
    case KEY_NPAGE: return kKeyPageDown;
    case KEY_HOME: return kKeyHome;
    case KEY_END: return kKeyEnd;
    case KEY_BACKSPACE: return kKeyBackspace;
    case KEY_DC: return kKeyDelete;
    case KEY_BTAB: return kKeyBackTab;
    case KEY_MOUSE: return kKeyMouse;
    case KEY_RESIZE: return kKeyResize;
    case KEY_ENTER: return kKeyEnter;
    default: return code >= KEY_F(1) && code <= KEY_F(12) ? kKeyF1 + static_cast<int32_t>(code - KEY_F(1)) : kNoKey;
  }
}

bool TakeMouse(Key* key) {
  MEVENT event;
  if (getmouse(&event) != OK) return false;
  key->row = event.y;
  key->column = event.x;
  if (event.bstate & BUTTON4_PRESSED) key->mouse = MouseDeed::kWheelUp;
  else if (event.bstate & BUTTON5_PRESSED) key->mouse = MouseDeed::kWheelDown;
  else if (event.bstate & (BUTTON1_DOUBLE_CLICKED | BUTTON1_TRIPLE_CLICKED)) key->mouse = MouseDeed::kDouble;
  else if (event.bstate & (BUTTON1_PRESSED | BUTTON1_CLICKED)) key->mouse = MouseDeed::kPress;
  else if (event.bstate & BUTTON1_RELEASED) key->mouse = MouseDeed::kRelease;
  else return false;
  return true;
}

// The characters of a text in the encoding of lines, controls as \xNN.
std::wstring WideOfLine(std::string_view text, bool hasUtf8) {
  std::wstring wide;
  wide.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    const uint32_t code = CodeOfWindows1252(byte);
    if (code < 0x20 || (code >= 0x7F && code < 0xA0)) {
      const char* pair = kHexPairs + 2 * byte;
      wide.append(L"\\x").append(1, pair[0]).append(1, pair[1]);
    } else if (code >= 0x80 && !hasUtf8) {
      wide += L'?';
    } else {
      wide += code == 0xAD ? L'-' : static_cast<wchar_t>(code);   // terminals do not agree on a soft hyphen's cells
    }
  }
  return wide;
}

std::wstring WideOfUtf8(std::string_view text, bool hasUtf8) {
  std::wstring wide;
  for (size_t at = 0; at < text.size();) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data()) + at;
    const Utf8Character next = Utf8At(bytes, static_cast<int32_t>(text.size() - at));
    at += next.octets ? static_cast<size_t>(next.octets) : 1;
    const bool isShown = next.octets && wcwidth(static_cast<wchar_t>(next.code)) > 0 && (next.code < 0x80 || hasUtf8);
    wide += isShown ? static_cast<wchar_t>(next.code) : L'?';
  }
  return wide;
}

int32_t CellsOf(wchar_t c) { return c < 0x7F ? 1 : std::max(wcwidth(c), 1); }

std::string Base64(std::string_view text) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  for (size_t i = 0; i < text.size(); i += 3) {
    uint32_t group = 0;
    const size_t count = std::min<size_t>(3, text.size() - i);
    for (size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? static_cast<uint8_t>(text[i + k]) : 0u);
    for (size_t k = 0; k < 4; ++k) out += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return out;
}

}  // namespace

std::string NameOfKey(int32_t code) {
  switch (code) {
    case kKeyTab: return "Tab";
    case kKeyEnter: return "Enter";
    case kKeyEscape: return "Esc";
    case ' ': return "Space";
    case kKeyUp: return "Up";
    case kKeyDown: return "Down";
    case kKeyLeft: return "Left";
    case kKeyRight: return "Right";
    case kKeyPageUp: return "PgUp";
    case kKeyPageDown: return "PgDn";
    case kKeyHome: return "Home";
    case kKeyEnd: return "End";
    case kKeyBackspace: return "Backspace";
    case kKeyDelete: return "Del";
    case kKeyBackTab: return "Shift-Tab";
    default: break;
  }
  if (code >= kKeyF1) return std::string("F").append(std::to_string(code - kKeyF1 + 1));
  if (code < ' ') return std::string("^") + static_cast<char>(code + '@');
  return std::string(1, static_cast<char>(code));
}

void LeaveScreenAtOnce() {
  if (!isOpen) return;
  isOpen = 0;
  static constexpr char kLeave[] = "\033[?1000l\033[?1002l\033[?1006l\033[0m\033[?25h\033[?1049l";
  if (write(STDOUT_FILENO, kLeave, sizeof kLeave - 1) < 0) {
    // Then the terminal is gone.
  }
  tcsetattr(STDOUT_FILENO, TCSANOW, &before);
}

bool Screen::Open(Theme theme, bool withMouse, std::string* message) {
  if (!isatty(STDOUT_FILENO)) return *message = "the view is shown on a terminal, and standard output is none", false;
  const char* name = std::getenv("TERM");
  if (!name || !name[0]) return *message = "TERM does not say what terminal this is", false;
  FILE* keys = stdin;
  if (!isatty(STDIN_FILENO)) {
    keyboard_ = keys = std::fopen("/dev/tty", "re");
    if (!keys) return *message = "there is no terminal to read keys from", false;
  }
  tcgetattr(STDOUT_FILENO, &before);
  std::setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0) std::setlocale(LC_CTYPE, "C.UTF-8");
  hasUtf8_ = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
  SCREEN* terminal = newterm(nullptr, stdout, keys);
  if (!terminal) return *message = std::string("nothing is known of the terminal ") + name, false;
  terminal_ = terminal;
  set_term(terminal);
  open_ = true;
  isOpen = 1;
  HandleSignals();
  cbreak();
  noecho();
  nonl();
  keypad(stdscr, TRUE);
  set_escdelay(25);
  if (withMouse) {
    mousemask(BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON1_DOUBLE_CLICKED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
    mouseinterval(0);
  }
  TakePalette(theme);
  curs_set(0);
  return true;
}

void Screen::Close() {
  if (!open_) return;
  open_ = false;
  isOpen = 0;
  endwin();
  delscreen(static_cast<SCREEN*>(terminal_));
  if (keyboard_) std::fclose(static_cast<FILE*>(keyboard_));
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) std::signal(number, SIG_DFL);
}

int32_t Screen::Rows() const { return getmaxy(stdscr); }
int32_t Screen::Columns() const { return getmaxx(stdscr); }

void Screen::Clear() {
  erase();
  cursor_ = false;
}

int32_t Screen::PutWide(int32_t row, int32_t column, const std::wstring& text, int32_t width, Style style) {
  width = std::min(width, Columns() - column);
  if (row < 0 || row >= Rows() || column < 0 || width <= 0) return 0;
  size_t length = 0;
  int32_t cells = 0, cutAt = 0;
  size_t cutLength = 0;
  for (; length < text.size() && cells + CellsOf(text[length]) <= width; ++length) {
    if (cells + CellsOf(text[length]) < width) cutLength = length + 1, cutAt = cells + CellsOf(text[length]);
    cells += CellsOf(text[length]);
  }
  std::wstring shown = text.substr(0, length);
  if (length < text.size()) {
    shown = text.substr(0, cutLength) + (hasUtf8_ ? L'\u2026' : L'~');
    cells = cutAt + 1;
  }
  const auto index = static_cast<int16_t>(style);
  attr_set((*palette)[index].attributes, hasColors ? index : int16_t{0}, nullptr);
  mvaddnwstr(row, column, shown.c_str(), static_cast<int>(shown.size()));
  return cells;
}

int32_t Screen::Put(int32_t row, int32_t column, std::string_view lineText, int32_t width, Style style) {
  if (width > 0) lineText = lineText.substr(0, static_cast<size_t>(width) + 1);   // a cell at least for each
  return PutWide(row, column, WideOfLine(lineText, hasUtf8_), width, style);
}

int32_t Screen::PutUtf8(int32_t row, int32_t column, std::string_view text, int32_t width, Style style) {
  return PutWide(row, column, WideOfUtf8(text, hasUtf8_), width, style);
}

void Screen::Fill(int32_t row, int32_t column, int32_t width, Style style) {
  if (width > 0) PutWide(row, column, std::wstring(static_cast<size_t>(width), L' '), width, style);
}

void Screen::SetCursor(int32_t row, int32_t column) {
  cursor_ = true;
  move(std::min(row, Rows() - 1), std::min(column, Columns() - 1));
}

void Screen::HideCursor() { cursor_ = false; }

void Screen::Show() {
  curs_set(cursor_ ? 1 : 0);
  refresh();
}

void Screen::DrawAnew() { clearok(curscr, TRUE); }

bool Screen::ReadKey(Key* key, int32_t milliseconds, int64_t input) {
  wint_t code = 0;
  wtimeout(stdscr, 0);
  int got = get_wch(&code);
  if (got == ERR && milliseconds != 0) {   // what the library holds already is not seen by poll
    const int keys = keyboard_ ? fileno(static_cast<FILE*>(keyboard_)) : STDIN_FILENO;
    pollfd waits[2] = {{keys, POLLIN, 0}, {static_cast<int>(input), POLLIN, 0}};
    const int ready = poll(waits, input >= 0 ? 2 : 1, milliseconds);
    if (ready > 0 && (waits[0].revents & (POLLHUP | POLLERR | POLLNVAL))) ended = SIGHUP;
    got = get_wch(&code);
  }
  if (got == ERR) return false;
  *key = Key{};
  if (got == KEY_CODE_YES) {
    key->code = CodeOfCurses(code);
    if (key->code == kKeyMouse) return TakeMouse(key);
    return key->code != kNoKey;
  }
  key->code = static_cast<int32_t>(code);
  if (key->code == '\r') key->code = kKeyEnter;
  if (key->code == 0x7F || key->code == 8) key->code = kKeyBackspace;
  return true;
}

void Screen::Copy(std::string_view text) {
  const std::string sent = "\033]52;c;" + Base64(text) + "\a";
  std::fwrite(sent.data(), 1, sent.size(), stdout);
  std::fflush(stdout);
}

bool Screen::TakeInterrupt() {
  const bool was = interrupted;
  interrupted = 0;
  return was;
}

int Screen::Ended() const { return ended; }

}  // namespace qxview
