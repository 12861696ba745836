// The terminal as the view draws on it: texts in styles, keys and the mouse. Only screen.cpp knows the library beneath.
//
// Texts are in the characters of lines or in UTF-8; a control character is shown as \xNN, so that none reaches the terminal.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace qxview {

enum class Style : uint8_t {
  kPlain, kBar, kTitle, kSelected, kSelectedElsewhere, kFaint, kGood, kWrong, kMarked, kBytes, kLink, kGreen, kTeal,
  kViolet, kBrown, kMagenta, kBlue, kTrouble, kStyles
};

enum class Theme : uint8_t { kAuto, kDark, kLight, kSixteen, kNone };

// Codes of keys: the characters they give, and these.
enum KeyCode : int32_t {
  kNoKey = -1,
  kKeyTab = 9, kKeyEnter = 10, kKeyEscape = 27,
  kKeyUp = 0x200000, kKeyDown, kKeyLeft, kKeyRight, kKeyPageUp, kKeyPageDown, kKeyHome, kKeyEnd, kKeyBackspace, kKeyDelete,
  kKeyBackTab, kKeyMouse, kKeyResize,
  kKeyF1 = 0x200100,   // and on
};
constexpr int32_t ControlKey(char letter) { return letter & 0x1F; }
// "F3", "Tab", "PgDn", "^L", "n".
std::string NameOfKey(int32_t code);

enum class MouseDeed : uint8_t { kPress, kRelease, kDouble, kWheelUp, kWheelDown };

struct Key {
  int32_t code = kNoKey;
  MouseDeed mouse = MouseDeed::kPress;
  int32_t row = 0, column = 0;   // of the mouse
};

class Screen {
 public:
  Screen() = default;
  ~Screen() { Close(); }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  // False with a message where there is no terminal that it could draw on.
  bool Open(Theme theme, bool withMouse, std::string* message);
  // Gives the terminal back as it was.
  void Close();

  int32_t Rows() const;
  int32_t Columns() const;
  bool HasUtf8() const { return hasUtf8_; }

  void Clear();
  // Draws as much of the text as `width` cells hold, with an ellipsis where something is left out; the cells taken.
  int32_t Put(int32_t row, int32_t column, std::string_view lineText, int32_t width, Style style);
  int32_t PutUtf8(int32_t row, int32_t column, std::string_view text, int32_t width, Style style);
  void Fill(int32_t row, int32_t column, int32_t width, Style style);
  void SetCursor(int32_t row, int32_t column);
  void HideCursor();
  void Show();
  void DrawAnew();

  // Waits so long for a key, or until `input` (-1: none) has something to read. False when there was none.
  bool ReadKey(Key* key, int32_t milliseconds, int64_t input = -1);

  // Into the clipboard of whoever sits at the terminal, also behind ssh.
  void Copy(std::string_view text);

  // Ctrl-C since the last call; a signal that ends the program (0: none).
  bool TakeInterrupt();
  int Ended() const;

 private:
  int32_t PutWide(int32_t row, int32_t column, const std::wstring& text, int32_t width, Style style);

  bool open_ = false, hasUtf8_ = false, cursor_ = false;
  void* terminal_ = nullptr;
  void* keyboard_ = nullptr;   // when standard input is the capture
};

// For a program that ends where it cannot end the screen: gives the terminal back. Harmless without one.
void LeaveScreenAtOnce();

}  // namespace qxview
