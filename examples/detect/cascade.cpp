// Reads and writes cascades.
#include "cascade.hpp"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "image.hpp"

namespace detect {
namespace {

using gallery::Failure;

// Tables of floats and the rectangles' corners have room for far more; a window beyond this is a mistake.
constexpr int largestWindow = 1024;

using Words = std::vector<std::string_view>;

Words wordsOf(std::string_view line)
{
    constexpr std::string_view blanks = " \t\r";
    line = line.substr(0, line.find('#'));
    Words words;
    for (std::size_t start = line.find_first_not_of(blanks); start != std::string_view::npos;) {
        const std::size_t end = std::min(line.find_first_of(blanks, start), line.size());
        words.push_back(line.substr(start, end - start));
        start = line.find_first_not_of(blanks, end);
    }
    return words;
}

// One file in the making: takes its lines in order and knows what may come next.
class Parser
{
  public:
    explicit Parser(const std::string& name) : name_(name) {}

    void take(std::string_view line)
    {
        ++line_;
        const Words words = wordsOf(line);
        if (words.empty()) {
            return;
        }
        if (!headed_) {
            if (words != Words{"cascade", "1"}) {
                throw fail("it is not a cascade of version 1");
            }
            headed_ = true;
        } else if (words[0] == "window") {
            expectNumbers(words, 2);
            if (cascade_.windowWidth != 0) {
                throw fail("a second window");
            }
            cascade_.windowWidth = side(words[1], largestWindow);
            cascade_.windowHeight = side(words[2], largestWindow);
        } else if (words[0] == "deviation") {
            expectNumbers(words, 1);
            cascade_.leastDeviation = real(words[1]);
        } else if (words[0] == "stage") {
            expectNumbers(words, 1);
            closeStage();
            cascade_.stages.push_back({{}, real(words[1])});
        } else if (words[0] == "weak") {
            expectNumbers(words, 3);
            if (cascade_.stages.empty()) {
                throw fail("a classifier before the first stage");
            }
            closeClassifier();
            cascade_.stages.back().classifiers.push_back({{}, real(words[1]), real(words[2]), real(words[3])});
        } else if (words[0] == "rect") {
            expectNumbers(words, 5);
            takeRectangle(words);
        } else {
            throw fail("'" + std::string(words[0]) + "' is no word of a cascade");
        }
    }

    Cascade finish()
    {
        if (!headed_) {
            throw fail("it is empty");
        }
        closeStage();
        if (cascade_.stages.empty()) {
            throw fail("it has no stage");
        }
        return std::move(cascade_);
    }

  private:
    Failure fail(const std::string& why) const
    {
        return Failure("cannot read the cascade '" + name_ + "': line " + std::to_string(line_) + ": " + why);
    }

    void expectNumbers(const Words& words, std::size_t count) const
    {
        if (words.size() != count + 1) {
            throw fail("'" + std::string(words[0]) + "' takes " + std::to_string(count) + " numbers");
        }
    }

    template <typename T>
    T number(std::string_view word) const
    {
        T value{};
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc{} || end != word.data() + word.size()) {
            throw fail("'" + std::string(word) + "' is not a number that can stand here");
        }
        return value;
    }

    float real(std::string_view word) const
    {
        const float value = number<float>(word);
        if (!std::isfinite(value)) {
            throw fail("'" + std::string(word) + "' is not a number that can stand here");
        }
        return value;
    }

    int side(std::string_view word, int largest) const
    {
        const int value = number<int>(word);
        if (value < 1 || value > largest) {
            throw fail("a side of " + std::string(word) + " is not within 1 and " + std::to_string(largest));
        }
        return value;
    }

    void takeRectangle(const Words& words)
    {
        if (cascade_.stages.empty() || cascade_.stages.back().classifiers.empty()) {
            throw fail("a rectangle before the first classifier");
        }
        WeightedRectangle rectangle{};
        rectangle.x = number<int>(words[1]);
        rectangle.y = number<int>(words[2]);
        rectangle.width = side(words[3], largestWindow);
        rectangle.height = side(words[4], largestWindow);
        rectangle.weight = real(words[5]);
        if (rectangle.x < 0 || rectangle.x > cascade_.windowWidth - rectangle.width || rectangle.y < 0 ||
            rectangle.y > cascade_.windowHeight - rectangle.height) {
            throw fail("the rectangle does not lie in the window");
        }
        cascade_.stages.back().classifiers.back().rectangles.push_back(rectangle);
    }

    void closeClassifier() const
    {
        const Stage& stage = cascade_.stages.back();
        if (!stage.classifiers.empty() && stage.classifiers.back().rectangles.empty()) {
            throw fail("the classifier before has no rectangle");
        }
    }

    void closeStage() const
    {
        if (cascade_.stages.empty()) {
            return;
        }
        if (cascade_.stages.back().classifiers.empty()) {
            throw fail("the stage before has no classifier");
        }
        closeClassifier();
    }

    std::string name_;
    int line_ = 0;
    bool headed_ = false;
    Cascade cascade_;
};

void append(std::string& text, float value)
{
    char digits[32];
    // the fewest digits that give the number back
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    text.append(" ").append(digits, result.ptr);
}

void append(std::string& text, int value)
{
    text += ' ';
    text += std::to_string(value);
}

template <typename... Numbers>
void appendLine(std::string& text, const char* word, Numbers... numbers)
{
    text += word;
    (append(text, numbers), ...);
    text += '\n';
}

}  // namespace

Cascade parseCascade(std::string_view text, const std::string& name)
{
    Parser parser(name);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        parser.take(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parser.finish();
}

Cascade readCascade(const std::filesystem::path& path)
{
    const auto fail = [&](const std::string& why) {
        return Failure("cannot read the cascade '" + path.string() + "': " + why);
    };
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw fail("it is a folder");
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) {
        throw fail(std::strerror(errno));
    }
    std::string text;
    char part[4096];
    for (std::size_t length; (length = std::fread(part, 1, sizeof part, file.get())) > 0;) {
        text.append(part, length);
    }
    if (std::ferror(file.get())) {
        throw fail(std::strerror(errno));
    }
    return parseCascade(text, path.string());
}

std::string cascadeText(const Cascade& cascade)
{
    std::string text = "cascade 1\n";
    appendLine(text, "window", cascade.windowWidth, cascade.windowHeight);
    appendLine(text, "deviation", cascade.leastDeviation);
    for (const Stage& stage : cascade.stages) {
        appendLine(text, "stage", stage.threshold);
        for (const WeakClassifier& weak : stage.classifiers) {
            appendLine(text, "weak", weak.threshold, weak.voteBelow, weak.voteOtherwise);
            for (const WeightedRectangle& r : weak.rectangles) {
                appendLine(text, "rect", r.x, r.y, r.width, r.height, r.weight);
            }
        }
    }
    return text;
}

}  // namespace detect
