#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

class FunctionTest : public testing::Test
{
  public:
    explicit FunctionTest(lumcv::test::TestBody body) : body_(body) {}

    void TestBody() override
    {
        body_();
    }

  private:
    lumcv::test::TestBody body_;
};

}  // namespace

bool registerTests(const char* suite, const char* test, const std::vector<std::string>& typeNames,
                   const TestBody* bodies, const char* file, int line)
{
    for (std::size_t i = 0; i < typeNames.size(); ++i) {
        const TestBody body = bodies[i];
        const std::string suiteOfType = std::string(suite) + "/" + typeNames[i];
        testing::RegisterTest(suiteOfType.c_str(), test, typeNames[i].c_str(), nullptr, file, line,
                              [body]() -> testing::Test* { return new FunctionTest(body); });
    }
    return true;
}

}  // namespace lumcv::test
