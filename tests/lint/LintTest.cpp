// Verifies the rules of the tree that no compiler enforces. Each check first has to find what is
// wrong in a small sample, and to let its counterpart pass; then it reads the whole tree.

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "lint/Checks.h"

namespace nevo::lint {
namespace {

using Check = Findings (*)(const SourceFile&);

const std::vector<SourceFile>& tree() {
    static const std::vector<SourceFile> files = wholeTree();
    return files;
}

/// A file that the tree has to have.
const SourceFile& fileOf(const std::string& path) {
    static const SourceFile none;
    auto found = std::find_if(tree().begin(), tree().end(),
                              [&](const SourceFile& file) { return file.path == path; });
    EXPECT_NE(found, tree().end()) << path << " wasn't found";
    return found == tree().end() ? none : *found;
}

std::string joined(const Findings& findings) {
    std::string text;
    for (const std::string& finding : findings) text += "\n  " + finding;
    return text;
}

void expectWrong(Check check, const std::string& path, const std::string& text) {
    EXPECT_EQ(check({path, text}).size(), 1U) << path << " passes:\n" << text;
}

void expectRight(Check check, const std::string& path, const std::string& text) {
    EXPECT_EQ(joined(check({path, text})), "") << text;
}

void expectTreeRight(Check check) {
    ASSERT_GT(tree().size(), 20U) << "the tree wasn't found";
    Findings findings;
    for (const SourceFile& file : tree()) {
        for (std::string& finding : check(file)) findings.push_back(std::move(finding));
    }
    EXPECT_EQ(joined(findings), "");
}

TEST(Lint, foldersIncludeOnlyWhatTheirLayerMay) {
    expectWrong(includesAcrossLayers, "src/core/A.cpp", "#include <QString>\n");
    expectWrong(includesAcrossLayers, "src/core/A.cpp", "\n#include \"controller/B.h\"\n");
    expectWrong(includesAcrossLayers, "src/core/A.cpp", "#include \"platform/sim/B.h\"\n");
    expectWrong(includesAcrossLayers, "src/platform/A.h", "#include <fmt/format.h>\n");
    expectWrong(includesAcrossLayers, "src/platform/sim/A.h", "#include <unistd.h>\n");
    expectWrong(includesAcrossLayers, "src/menubar/A.cpp", "#include <QtCore/qstring.h>\n");
    expectWrong(includesAcrossLayers, "src/platform/x11/A.cpp", "#include \"core/B.h\"\n");
    expectRight(includesAcrossLayers, "src/menubar/A.cpp",
                "#include <cairo/cairo.h>\n#include <xcb/xcb.h>\n#include <poll.h>\n"
                "#include <vector>\n#include \"platform/xcb/B.h\"\n// #include <QString>\n");
    expectTreeRight(includesAcrossLayers);
}

TEST(Lint, timeAndChanceComeThroughTheRunLoop) {
    for (const char* text :
         {"auto t = std::chrono::steady_clock::now();", "this_thread::sleep_for(x);",
          "QTimer timer;", "int i = rand();", "std::random_device seed;"}) {
        expectWrong(clocksAndChance, "src/controller/A.cpp", text);
        expectRight(clocksAndChance, "src/platform/x11/A.cpp", text);
    }
    expectRight(clocksAndChance, "src/core/A.cpp",
                "co_await sleep(3.0);  // no QTimer\nlog(\"rand()\");\nlog(R\"x(\"don't "
                "rand()\")x\");\nint operand(int);");
    expectTreeRight(clocksAndChance);
}

TEST(Lint, awaitsHaveAFormThatEveryCompilerTranslatesRightly) {
    for (const char* text :
         {"co_await Foo{1};", "co_await run(Foo{1});", "co_await (b ? f() : g());",
          "if (co_await f()) return;", "auto x = a && co_await f();", "use(co_await f());",
          "co_await run([x] { return x; });", "auto x = !co_await f();",
          "auto x = co_await f() || b;", "while (a\n && co_await f()) {}",
          "auto x = co_await (f());", "switch (co_await f()) {}"}) {
        expectWrong(fragileAwaits, "src/core/A.cpp", "Task<> t() {\n" + std::string(text) + "\n}");
    }
    for (const char* text :
         {"co_await f();", "auto x = co_await f(a, Point(1, 2)[0]);",
          "co_return co_await this_->f();", "if (a && b) co_await f();",
          "for (int i = 0; i < 3 && a; ++i) co_await f();", "std::vector<int> x = co_await result;",
          "// co_await (x)\n", "auto&& x = co_await\n f();",
          "auto x = co_await nevo::f<int>(owner);\nif (x && b) return;"}) {
        expectRight(fragileAwaits, "src/core/A.cpp", "Task<> t() {\n" + std::string(text) + "\n}");
    }
    expectTreeRight(fragileAwaits);
}

TEST(Lint, filesAreOfReadableLength) {
    expectWrong(overlongFiles, "src/core/A.cpp", std::string(601, '\n'));
    expectRight(overlongFiles, "src/core/A.cpp", std::string(600, '\n'));
    expectTreeRight(overlongFiles);
}

TEST(Lint, theTreeIsItsOwnAuthority) {
    expectWrong(pointersOutside, "src/core/A.h",
                "/// As the spe"
                "c says.");
    expectWrong(pointersOutside, "docs/a.md",
                "See Par"
                "t 4.1.");
    expectWrong(pointersOutside, "run",
                "cd /wor"
                "k/main");
    expectRight(pointersOutside, "docs/a.md",
                "Special, specific, inspect; part 1 of the XEmbed specification.");
    expectRight(pointersOutside, "src/core/A.cpp",
                "int spe"
                "c = 1;");
    expectTreeRight(pointersOutside);
}

TEST(Lint, noTestIsSwitchedOff) {
    expectWrong(sleepingTests, "tests/unit/A.cpp",
                "TEST(A, DISABLED"
                "_b) {}");
    expectWrong(sleepingTests, "tests/unit/A.cpp",
                "if (x) GTEST"
                "_SKIP();");
    expectTreeRight(sleepingTests);
}

TEST(Lint, everyPackageHasItsReason) {
    EXPECT_EQ(unexplainedPackages({"p", "# what\n[build]\ng++\ngcc\n"}, "`g++` compiles").size(),
              1U);

    std::string decisions;
    for (const SourceFile& file : tree()) {
        if (file.isIn("docs/decisions")) decisions += file.text;
    }
    EXPECT_EQ(joined(unexplainedPackages(fileOf("scripts/packages"), decisions)), "");
}

TEST(Lint, whatIsInstalledAgreesWithThePrograms) {
    EXPECT_EQ(joined(disagreeingNames(tree())), "");
    for (auto [path, other] : {std::pair("src/platform/x11/ProgramName.h", "com.example.Other\""),
                               {"CMakeLists.txt", "VERSION 9.9 LANG"}}) {
        auto changed = tree();
        for (SourceFile& file : changed) {
            static const std::regex idOrVersion(R"x(com\.\w+\.Nevo"|VERSION [0-9.]+ LANG)x");
            if (file.path == path) file.text = std::regex_replace(file.text, idOrVersion, other);
        }
        EXPECT_NE(joined(disagreeingNames(changed)), "") << path;
    }

    EXPECT_EQ(disagreeingManual({"p", "\"--one\" \"--two\""}, {"m", "\\-\\-one --three"}).size(),
              2U);
    for (auto [program, manual] : {std::pair("apps/nevo/main.cpp", "packaging/nevo.1"),
                                   {"src/menubar/Options.cpp", "packaging/nevo-menubar.1"}}) {
        EXPECT_EQ(joined(disagreeingManual(fileOf(program), fileOf(manual))), "");
    }
}

}  // namespace
}  // namespace nevo::lint
