#include "shells/cli/ManualPage.h"

#include <cctype>
#include <sstream>

#include "seam/Version.h"

namespace marnoth {

namespace {

/// Text that means itself, wherever it stands in a line.
std::string plain(const std::string& text) {
    std::string quoted;
    for (const char c : text) quoted += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    const bool isRequest = !text.empty() && (text[0] == '.' || text[0] == '\'');
    return isRequest ? "\\&" + quoted : quoted;
}

std::string bold(const std::string& text) {
    return "\\fB" + plain(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + plain(text) + "\\fR";
}

std::string upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

/// Paragraphs, with indented lines as they stand. Headings become sections of the page where these are
/// wanted.
class FooterText {
public:
    explicit FooterText(bool headingsAreSections) : headingsAreSections_(headingsAreSections) {}

    std::string write(const std::string& footer) {
        std::istringstream stream(footer);
        for (std::string line; std::getline(stream, line);) add(line);
        setIndented(false);
        return page_;
    }

private:
    void add(const std::string& line) {
        setIndented(line.starts_with("  "));
        const bool isHeading = headingsAreSections_ && !isIndented_ && line.ends_with(':');
        if (line.empty())
            page_ += ".PP\n";
        else if (isHeading)
            page_ += ".SH " + upper(line.substr(0, line.size() - 1)) + "\n";
        else
            page_ += plain(line) + "\n";
    }

    void setIndented(bool indented) {
        if (indented != isIndented_) page_ += indented ? ".nf\n" : ".fi\n";
        isIndented_ = indented;
    }

    bool headingsAreSections_;
    bool isIndented_ = false;
    std::string page_;
};

/// A request and a blank line before the next one say nothing twice: paragraphs begin where text follows.
std::string withoutEmptyParagraphs(const std::string& page) {
    std::istringstream stream(page);
    std::string tidy;
    bool isOpen = false;
    for (std::string line; std::getline(stream, line);) {
        const bool isParagraph = line == ".PP";
        if (isOpen && !line.starts_with(".S") && !isParagraph) tidy += ".PP\n";
        isOpen = isParagraph;
        if (!isParagraph) tidy += line + "\n";
    }
    return tidy;
}

std::string heading(const OptionText& option) {
    std::string text;
    for (const std::string& name : option.names) text += (text.empty() ? "" : ", ") + bold(name);
    if (!option.value.empty()) text += (text.empty() ? "" : " ") + italic(option.value);
    return text;
}

std::string entry(const OptionText& option) {
    const std::string note = option.required && !option.names.empty() ? "; required" : "";
    return ".TP\n" + heading(option) + "\n" + plain(option.meaning + note) + ".\n";
}

std::string synopsis(const CommandText& command) {
    std::string line = bold("marnoth " + command.name);
    line += " [" + italic("options") + "]";
    for (const OptionText& option : command.options)
        if (option.required) line += " " + bold(option.names.front()) + " " + italic(option.value);
    for (const OptionText& argument : command.arguments)
        line += argument.required ? " " + italic(argument.value) : " [" + italic(argument.value) + "]";
    return line;
}

std::string section(const CommandText& command) {
    std::string page = ".SS " + command.name + "\n" + plain(command.meaning) + ".\n";
    for (const OptionText& argument : command.arguments) page += entry(argument);
    for (const OptionText& option : command.options) page += entry(option);
    return page + ".PP\n" + FooterText(false).write(command.footer);
}

}  // namespace

std::string manualPage(const ProgramText& text) {
    const CommandText& program = text.program;
    std::string page = ".TH MARNOTH 1 \"\" \"marnoth " + std::string(kVersion) + "\" \"User commands\"\n";
    page +=
        ".SH NAME\nmarnoth \\- play, render and inspect loops and projects of a groove sampler\n.SH "
        "SYNOPSIS\n";
    for (const CommandText& command : text.commands) page += synopsis(command) + "\n.br\n";
    for (std::size_t i = 0; i < program.options.size(); ++i)
        page +=
            (i > 0 ? ".br\n" : "") + bold("marnoth") + " " + bold(program.options[i].names.front()) + "\n";
    page += ".SH DESCRIPTION\n" + FooterText(false).write(program.meaning);
    page += ".SH COMMANDS\n";
    for (const CommandText& command : text.commands) page += section(command);
    return withoutEmptyParagraphs(page + FooterText(true).write(program.footer));
}

}  // namespace marnoth
