#pragma once
#include <cstdint>
#include <string>

namespace ui::editor {

/// The kinds of message.
enum class MessageKind { kPlain, kWarning, kConfirmation, kErrorReport };

enum class MessageButtons { kOk, kOkCancel, kYesNo };
enum class MessageIcon { kNone, kExclamation, kCritical };
/// What a button of a message is worth.
enum class MessageAnswer : std::int16_t { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

/// How a kind of message looks. The default button is the one that Enter and a machine without a display
/// press.
struct MessageForm {
  MessageButtons buttons;
  MessageAnswer byDefault;
  MessageIcon icon;
  const char* title;
};

constexpr MessageForm FormOf(MessageKind kind) {
  switch (kind) {
    case MessageKind::kWarning:
      return {MessageButtons::kOkCancel, MessageAnswer::kOk, MessageIcon::kExclamation,
              "Vantorix PlayList Editor"};
    // Also before a single title is deleted.
    case MessageKind::kConfirmation:
      return {MessageButtons::kYesNo, MessageAnswer::kNo, MessageIcon::kNone, "Confirm PlayList Deletion"};
    case MessageKind::kErrorReport:
      return {MessageButtons::kOk, MessageAnswer::kOk, MessageIcon::kCritical, "Media Player Error"};
    default: return {MessageButtons::kOk, MessageAnswer::kOk, MessageIcon::kNone, "Vantorix Media Player"};
  }
}

/// What the file dialog is told before it shows.
struct FileDialog {
  /// Cancel is a failure, with this number.
  static constexpr std::int32_t kCancelled = 32755;
  /// No box "read only" (4), the file must exist (0x1000), and the dialog of an explorer (0x80000).
  static constexpr std::int32_t kFlags = 528388;

  bool CancelError = false;
  std::int32_t flags = 0;
  std::string filter;            ///< pairs of a name and patterns joined by ";", all joined by "|"
  std::int16_t filterIndex = 0;  ///< from 1
};

/// What the editor asks its user. Each returns when there is an answer; timers and all other events, those of
/// the host as well, run meanwhile, and the window takes no input. Without a display, and when it goes, the
/// default is the answer. None of them throws but `openFile`.
class EditorDialogs {
 public:
  EditorDialogs() = default;
  EditorDialogs(const EditorDialogs&) = delete;
  EditorDialogs& operator=(const EditorDialogs&) = delete;
  EditorDialogs(EditorDialogs&&) = delete;
  EditorDialogs& operator=(EditorDialogs&&) = delete;
  virtual ~EditorDialogs() = default;

  virtual MessageAnswer message(MessageKind kind, const std::string& text) = 0;
  /// What was typed; empty for Cancel.
  virtual std::string inputBox(const std::string& prompt, const std::string& title,
                               const std::string& typed) = 0;
  /// The chosen file's path. Throws `FileDialog::kCancelled` where `CancelError` asks for it.
  virtual std::string openFile(const FileDialog& how) = 0;
};

}  // namespace ui::editor
