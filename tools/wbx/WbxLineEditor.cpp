#include "WbxLineEditor.h"

#include <errno.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr char ControlA = 0x01, ControlC = 0x03, ControlD = 0x04, ControlE = 0x05;
constexpr char ControlH = 0x08, ControlU = 0x15, Escape = 0x1b, Delete = 0x7f;

// Puts a terminal in raw mode for the life of the object.
class RawMode {
  public:
    explicit RawMode(int fd) : _fd(fd) {
        if (tcgetattr(fd, &_saved) != 0) return;
        termios raw = _saved;
        raw.c_lflag &= static_cast<tcflag_t>(~(ECHO | ICANON | ISIG | IEXTEN));
        raw.c_iflag &= static_cast<tcflag_t>(~(IXON | ICRNL));
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        _active = tcsetattr(fd, TCSADRAIN, &raw) == 0;
    }
    ~RawMode() {
        if (_active) tcsetattr(_fd, TCSADRAIN, &_saved);
    }
    RawMode(const RawMode&) = delete;
    RawMode& operator=(const RawMode&) = delete;
    bool IsActive() const { return _active; }

  private:
    int _fd;
    termios _saved{};
    bool _active = false;
};

}  // namespace

bool WbxLineEditor::ReadByte(char& c) {
    while (true) {
        ssize_t count = read(_input, &c, 1);
        if (count == 1) return true;
        if (count == 0) return false;
        if (errno != EINTR) return false;
    }
}

bool WbxLineEditor::ReadLine(const std::string& prompt, std::string& line) {
    line.clear();
    RawMode raw(_input);
    if (raw.IsActive()) return ReadEdited(prompt, line);
    _out << prompt << std::flush;
    return ReadPlain(line);
}

bool WbxLineEditor::ReadPlain(std::string& line) {
    char c;
    bool any = false;
    while (ReadByte(c)) {
        any = true;
        if (c == '\n') return true;
        if (c != '\r') line += c;
    }
    return any;
}

void WbxLineEditor::Redraw(const std::string& prompt, const std::string& line, std::size_t cursor) {
    _out << "\r" << prompt << line << "\x1b[K";
    if (cursor < line.size()) _out << "\x1b[" << line.size() - cursor << "D";
    _out << std::flush;
}

void WbxLineEditor::Remember(const std::string& line) {
    if (line.find_first_not_of(" \t") == std::string::npos) return;
    if (_history.empty() || _history.back() != line) _history.push_back(line);
}

bool WbxLineEditor::ReadEdited(const std::string& prompt, std::string& line) {
    std::size_t cursor = 0;
    std::size_t recalled = _history.size();  // the history entry shown; size: the new line
    std::string typed;                       // the new line while the history is shown
    Redraw(prompt, line, cursor);
    char c;
    while (ReadByte(c)) {
        if (c == '\r' || c == '\n') {
            _out << "\n" << std::flush;
            Remember(line);
            return true;
        }
        if (c == ControlD && line.empty()) {
            _out << "\n" << std::flush;
            return false;
        }
        if (c == ControlC) {
            _out << "^C\n";
            line.clear();
            cursor = 0;
            recalled = _history.size();
        } else if (c == ControlU) {
            line.clear();
            cursor = 0;
        } else if ((c == Delete || c == ControlH) && cursor > 0) {
            line.erase(--cursor, 1);
        } else if (c == ControlA) {
            cursor = 0;
        } else if (c == ControlE) {
            cursor = line.size();
        } else if (c == Escape) {
            char bracket, key;
            if (!ReadByte(bracket) || !ReadByte(key)) return false;
            if (bracket != '[' && bracket != 'O') continue;
            if (key == 'D' && cursor > 0) --cursor;
            if (key == 'C' && cursor < line.size()) ++cursor;
            if (key == 'H') cursor = 0;
            if (key == 'F') cursor = line.size();
            bool up = key == 'A' && recalled > 0;
            bool down = key == 'B' && recalled < _history.size();
            if (up || down) {
                if (recalled == _history.size()) typed = line;
                recalled = up ? recalled - 1 : recalled + 1;
                line = recalled == _history.size() ? typed : _history[recalled];
                cursor = line.size();
            }
        } else if (static_cast<unsigned char>(c) >= 0x20) {
            line.insert(cursor++, 1, c);
        }
        Redraw(prompt, line, cursor);
    }
    return false;
}
