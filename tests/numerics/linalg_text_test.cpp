#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "linalg_test_support.h"
#include "orvo/foundation/platform.h"
#include "orvo/numerics/matrix.h"
#include "orvo/services/logger.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

using test::MakeMatrix;
using test::MakeVector;
using test::ThrownCode;

// " " + the text right-aligned in a field of `width`.
std::string Field(const std::string& text, std::size_t width) {
    return " " + std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

TEST(LinalgWriteTest, VectorRecordLayout) {
    OvWriterReset();
    std::ostringstream out;
    MakeVector({1.5, -2, 0.1}).Write(out);
    EXPECT_EQ(out.str(), Field("3", 4) + Field("1.5", 24) + Field("-2", 24) +
                             Field("0.10000000000000001", 24));
    std::ostringstream empty;
    OvVector().Write(empty);
    EXPECT_EQ(empty.str(), Field("0", 4));
}

TEST(LinalgWriteTest, MatrixRecordTakesTheBlockIndentation) {
    OvWriterReset();
    std::ostringstream out;
    out << "TILTTRAFO " << OvBeginBlockNL;
    MakeMatrix({{1, 0.5}, {-3, 1e20}}).Write(out);
    out << OvEndBlockNL;
    const std::string expected = "TILTTRAFO {\n    " + Field("2", 4) + Field("2", 4) + "\n    " +
                                 Field("1", 24) + Field("0.5", 24) + "\n    " + Field("-3", 24) +
                                 Field("1e+20", 24) + "\n}";
    EXPECT_EQ(out.str(), expected);
    EXPECT_EQ(OvWriterLevel(), 0);
}

TEST(LinalgWriteTest, CallersNumberFormatIsRestored) {
    std::ostringstream out;
    out.precision(3);
    out.setf(std::ios_base::fixed, std::ios_base::floatfield);
    MakeVector({1.0 / 3.0}).Write(out);
    EXPECT_EQ(out.str(), Field("1", 4) + Field("0.33333333333333331", 24));
    out.str("");
    out << 2.0 / 3.0;
    EXPECT_EQ(out.str(), "0.667");
}

// Collects what reaches the debugger for the lifetime of the capture.
class DebugCapture {
public:
    DebugCapture() {
        previous_ = OvSetDebugOutputSink([this](const char* text) { pieces.emplace_back(text); });
    }
    ~DebugCapture() { OvSetDebugOutputSink(previous_); }
    std::string All() const {
        std::string all;
        for (const auto& piece : pieces)
            all += piece;
        return all;
    }
    std::vector<std::string> pieces;

private:
    OvDebugOutputSink previous_;
};

TEST(LinalgDbgPrintfTest, MatrixOneLinePerMatrixLine) {
    DebugCapture capture;
    MakeMatrix({{1, -2.5}, {1.0 / 3.0, 0}}).DbgPrintf("M");
    ASSERT_EQ(capture.pieces.size(), 3u);
    EXPECT_EQ(capture.pieces[0], "M\n");
    EXPECT_EQ(capture.pieces[1], "1.00000   -2.50000   \n");
    EXPECT_EQ(capture.pieces[2], "0.33333   0.00000   \n");
}

TEST(LinalgDbgPrintfTest, VectorOnOneLineAndNoTitle) {
    DebugCapture capture;
    MakeVector({4, 0.125}).DbgPrintf(nullptr);
    ASSERT_EQ(capture.pieces.size(), 1u);
    EXPECT_EQ(capture.pieces[0], "4.00000   0.12500   \n");
}

TEST(LinalgDbgPrintfTest, TitleIsNotAFormat) {
    DebugCapture capture;
    OvVector(0).DbgPrintf("100% %s %n");
    EXPECT_EQ(capture.All(), "100% %s %n\n\n");
}

TEST(LinalgDbgPrintfTest, LongLinesArriveWhole) {
    // 400 elements of 11 characters each: far more than dbgprintf's buffer holds.
    OvMatrix wide(1, 400);
    for (int j = 1; j <= 400; ++j)
        wide.SetElem(1, j, -j);
    DebugCapture capture;
    wide.DbgPrintf(nullptr);
    EXPECT_GT(capture.pieces.size(), 1u);
    for (const auto& piece : capture.pieces)
        EXPECT_LT(piece.size(), static_cast<std::size_t>(kDbgprintfBufferSize));
    std::string expected;
    for (int j = 1; j <= 400; ++j)
        expected += std::to_string(-j) + ".00000   ";
    EXPECT_EQ(capture.All(), expected + "\n");
}

}  // namespace
}  // namespace orvo
