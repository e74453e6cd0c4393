// Writes the contact sheet: plain HTML and CSS in one file, without scripts and without anything from elsewhere.
#include "page.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace gallery {
namespace {

constexpr const char* style = R"css(
  :root { color-scheme: light dark; --paper: #f5f4f0; --card: #fff; --ink: #23252b; --soft: #62666f; --line: #dddbd3;
          --accent: #a4552a; }
  @media (prefers-color-scheme: dark) {
    :root { --paper: #17181b; --card: #212327; --ink: #e6e5e1; --soft: #9ea2aa; --line: #34373d; --accent: #e09a6c; }
  }
  * { box-sizing: border-box; }
  body { margin: 0 auto; padding: 2.5rem 1.5rem 4rem; max-width: 92rem; background: var(--paper); color: var(--ink);
         font: 16px/1.5 system-ui, "Liberation Sans", "DejaVu Sans", sans-serif; }
  h1 { margin: 0; font-size: 1.9rem; letter-spacing: -.01em; }
  h2 { margin: 3rem 0 .2rem; font-size: 1.3rem; }
  p { margin: .2rem 0 0; color: var(--soft); max-width: 60rem; }
  .cards { display: grid; grid-template-columns: repeat(auto-fill, minmax(21rem, 1fr)); gap: 1.25rem; margin-top: 1rem; }
  figure { margin: 0; background: var(--card); border: 1px solid var(--line); border-radius: 10px; overflow: hidden;
           display: flex; flex-direction: column; }
  figure a { display: block; background: var(--line); }
  img { display: block; width: 100%; height: auto; max-height: 26rem; object-fit: contain; }
  figcaption { padding: .85rem 1rem 1rem; display: flex; flex-direction: column; flex: 1; gap: .45rem; }
  h3 { margin: 0; font-size: 1rem; }
  figcaption p { margin: 0; font-size: .88rem; }
  details { font-size: .82rem; }
  summary { cursor: pointer; font-family: ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
  pre { margin: .5rem 0 0; padding: .6rem .7rem; border-radius: 6px; background: var(--paper); white-space: pre-wrap;
        overflow-wrap: anywhere; font: .78rem/1.45 ui-monospace, "DejaVu Sans Mono", monospace; }
  .time { margin-top: auto; padding-top: .3rem; font-size: .86rem; color: var(--soft); }
  .time b { color: var(--accent); font-size: 1.05rem; }
)css";

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

// The library's functions that a call's text names: "lumiOne_8u + lumiTwo_8u".
std::string functionNames(const std::string& call)
{
    std::string names;
    const auto isNamePart = [](unsigned char c) { return std::isalnum(c) || c == '_'; };
    for (std::size_t start = call.find("lumi"); start != std::string::npos;) {
        const auto end = std::find_if_not(call.begin() + static_cast<std::ptrdiff_t>(start), call.end(), isNamePart);
        names += names.empty() ? "" : " + ";
        names.append(call.begin() + static_cast<std::ptrdiff_t>(start), end);
        start = call.find("lumi", static_cast<std::size_t>(end - call.begin()));
    }
    return names;
}

std::string number(const char* format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

void writeCard(std::ostream& out, const Card& card)
{
    const std::string file = escaped(card.exhibit->file);
    out << "  <figure id=\"" << file << "\">\n"
        << "    <a href=\"" << file << ".png\"><img src=\"" << file << ".png\" width=\"" << card.width << "\" height=\""
        << card.height << "\" alt=\"" << escaped(card.exhibit->title) << "\" loading=\"lazy\"></a>\n"
        << "    <figcaption>\n"
        << "      <h3>" << escaped(card.exhibit->title) << "</h3>\n"
        << "      <p>" << escaped(card.exhibit->note) << "</p>\n";
    if (!card.shot.calls().empty()) {
        // the last call is the measured one; the ones before it prepare
        out << "      <details><summary>" << escaped(functionNames(card.shot.calls().back())) << "</summary><pre>";
        for (const std::string& call : card.shot.calls()) {
            out << escaped(call) << ";\n";
        }
        out << "</pre></details>\n";
    }
    out << "      <div class=\"time\">";
    if (card.shot.runs() > 0) {
        const double milliseconds = card.shot.milliseconds();
        const double pixels = static_cast<double>(card.width) * card.height;
        out << "<b>"
            << number(milliseconds < 1.0     ? "%.3f"
                      : milliseconds < 100.0 ? "%.2f"
                                             : "%.0f",
                      milliseconds)
            << " ms</b> for " << card.width << " &times; " << card.height << " pixels, "
            << number("%.2f", milliseconds * 1e6 / pixels) << " ns each; median of " << card.shot.runs() << " runs";
    } else {
        out << card.width << " &times; " << card.height << " pixels";
    }
    out << "</div>\n    </figcaption>\n  </figure>\n";
}

}  // namespace

void writePage(const std::filesystem::path& path, const std::string& sourceName, const std::vector<Card>& cards)
{
    std::ofstream out(path);
    const LumLibraryVersion* version = lumcvGetLibVersion();
    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        << "<title>lumcv gallery</title>\n<style>" << style << "</style>\n</head>\n<body>\n"
        << "<h1>lumcv gallery</h1>\n<p>Every picture was made of " << escaped(sourceName)
        << " by the calls shown below it, in the processor time told there, with " << escaped(version->Name) << " "
        << escaped(version->Version)
        << ". A click on a picture shows it in full size, one on a name the whole call.</p>\n";

    const Section* section = nullptr;
    for (const Card& card : cards) {
        if (card.section != section) {
            out << (section ? "</div>\n" : "");
            section = card.section;
            out << "<h2>" << escaped(section->title) << "</h2>\n<p>" << escaped(section->note)
                << "</p>\n<div class=\"cards\">\n";
        }
        writeCard(out, card);
    }
    out << (section ? "</div>\n" : "") << "</body>\n</html>\n";
    out.close();
    if (!out) {
        throw Failure("cannot write '" + path.string() + "': " + std::strerror(errno));
    }
}

}  // namespace gallery
