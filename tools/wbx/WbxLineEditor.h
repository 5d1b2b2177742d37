#ifndef WBX_LINE_EDITOR_H
#define WBX_LINE_EDITOR_H

#include <ostream>
#include <string>
#include <vector>

// Reads lines typed at a terminal, with a prompt and a history: a small
// line editor in place of a readline library. While a line is read the
// terminal is in raw mode (no echo, no line buffering, no signals from
// keys), and is put back as it was afterwards. Keys:
//   printable characters       insert at the cursor
//   Backspace                  delete before the cursor
//   Left, Right, Home, End     move (also Ctrl-A, Ctrl-E)
//   Up, Down                   recall the previous and next lines of the
//                              history (the line being typed comes back
//                              after the newest)
//   Ctrl-U                     clear the line
//   Ctrl-C                     abandon the line, prompt again
//   Ctrl-D on an empty line    end of input
//   Enter                      accept the line; a line that is not blank
//                              and differs from the last one joins the
//                              history
// Other control keys and escape sequences are ignored. When the input is
// not a terminal the line is read as it comes, after the prompt.
class WbxLineEditor {
  public:
    // Reads from the file descriptor and echoes on out (which should be the
    // same terminal).
    WbxLineEditor(int input, std::ostream& out) : _input(input), _out(out) {}

    // Writes the prompt and reads one line, without its line end; false at
    // the end of input.
    bool ReadLine(const std::string& prompt, std::string& line);

    const std::vector<std::string>& GetHistory() const { return _history; }

  private:
    bool ReadByte(char& c);
    bool ReadPlain(std::string& line);
    bool ReadEdited(const std::string& prompt, std::string& line);
    void Redraw(const std::string& prompt, const std::string& line, std::size_t cursor);
    void Remember(const std::string& line);

    int _input;
    std::ostream& _out;
    std::vector<std::string> _history;
};

#endif
