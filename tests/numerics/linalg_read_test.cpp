#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

#include "linalg_test_support.h"
#include "orvo/foundation/link.h"
#include "orvo/numerics/matrix.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

using test::MakeMatrix;
using test::MakeVector;

// Binds "MATRIX" and "VECTOR" blocks to members, as a record that holds them would, and
// "AFTER" to an int that shows whether reading went on behind the block.
class Holder : public LinkHdl {
public:
    std::int32_t OnMatrix(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        EXPECT_EQ(matrix.Read(object), 1);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnVector(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        EXPECT_EQ(vector.Read(object), 1);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnNewVector(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        OvVector made(object);
        constructed = made.GetSize();
        object->DoProcess();
        return 1;
    }

    // Reads `text` and returns the number of read errors.
    int Read(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, "memory");
        reader.RegisterObject(OvReaderObject("MATRIX", MakeLink(this, &Holder::OnMatrix)));
        reader.RegisterObject(OvReaderObject("VECTOR", MakeLink(this, &Holder::OnVector)));
        reader.RegisterObject(OvReaderObject("NEWVECTOR", MakeLink(this, &Holder::OnNewVector)));
        reader.RegisterObject(OvReaderObject("AFTER", &after));
        reader.DoProcess(false);
        return reader.GetReadErrorCount();
    }

    OvMatrix matrix{3, 3};
    OvVector vector{2};
    int constructed = -1;
    int after = 0;
};

bool SameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(LinalgReadTest, MatrixRoundTripIsExact) {
    OvMatrix written(2, 3);
    const double values[] = {1.0 / 3.0, -0.0, 1e-300, 1e20, 123456789012345678.0, -2.5};
    for (int k = 0; k < 6; ++k)
        written[1 + k / 3][k % 3] = values[k];
    OvWriterReset();
    std::ostringstream out;
    out << "MATRIX " << OvBeginBlockNL;
    written.Write(out);
    out << OvEndBlockNL << Ovendl << "AFTER 5" << Ovendl;

    Holder holder;
    EXPECT_EQ(holder.Read(out.str()), 0) << out.str();
    ASSERT_EQ(holder.matrix.GetZeilen(), 2);
    ASSERT_EQ(holder.matrix.GetSpalten(), 3);
    for (int k = 0; k < 6; ++k)
        EXPECT_TRUE(SameBits(holder.matrix.Data()[k], values[k])) << "element " << k;
    EXPECT_EQ(holder.after, 5);
}

TEST(LinalgReadTest, VectorRoundTripIsExact) {
    const OvVector written = MakeVector({0.1, -7, 6.02214076e23});
    OvWriterReset();
    std::ostringstream out;
    out << "VECTOR { ";
    written.Write(out);
    out << " } AFTER 2";
    Holder holder;
    EXPECT_EQ(holder.Read(out.str()), 0);
    EXPECT_TRUE(holder.vector == written);
    EXPECT_EQ(holder.after, 2);
}

TEST(LinalgReadTest, ANewShapeReplacesTheStorage) {
    Holder holder;
    EXPECT_EQ(holder.Read("MATRIX { 2 4  1 2 3 4  5 6 7 8 }"), 0);
    ASSERT_EQ(holder.matrix.GetZeilen(), 2);
    ASSERT_EQ(holder.matrix.GetSpalten(), 4);
    EXPECT_EQ(holder.matrix.GetElem(2, 1), 5.0);
    EXPECT_EQ(holder.matrix.GetElem(2, 4), 8.0);
}

TEST(LinalgReadTest, DataEndingEarlyKeepsTheRestAndTheBlockClose) {
    Holder holder;
    holder.matrix = MakeMatrix({{9, 9, 9}, {9, 9, 9}, {9, 9, 9}});
    EXPECT_EQ(holder.Read("MATRIX { 3 3 1 2 }\nAFTER 4"), 0);
    EXPECT_EQ(holder.matrix.GetElem(1, 1), 1.0);
    EXPECT_EQ(holder.matrix.GetElem(1, 2), 2.0);
    EXPECT_EQ(holder.matrix.GetElem(1, 3), 9.0);  // same shape: the old value stays
    EXPECT_EQ(holder.matrix.GetElem(3, 3), 9.0);
    EXPECT_EQ(holder.after, 4);  // the "}" was left for the reader

    Holder reshaped;
    EXPECT_EQ(reshaped.Read("MATRIX { 1 2 7 }"), 0);
    EXPECT_EQ(reshaped.matrix.GetElem(1, 1), 7.0);
    EXPECT_EQ(reshaped.matrix.GetElem(1, 2), 0.0);  // a new shape starts from zeros
}

TEST(LinalgReadTest, EndOfFileEndsTheData) {
    Holder holder;
    holder.Read("VECTOR { 3 1.5");
    EXPECT_TRUE(holder.vector == MakeVector({1.5, 0, 0}));
}

TEST(LinalgReadTest, TokensOtherThanNumbersStoreZero) {
    Holder holder;
    EXPECT_EQ(holder.Read("VECTOR { 4 1 \"text\" word 4e0 }"), 0);
    EXPECT_TRUE(holder.vector == MakeVector({1, 0, 0, 4}));
}

TEST(LinalgReadTest, UnacceptableCountsGiveAnEmptyRecord) {
    Holder negative;
    negative.Read("MATRIX { -1 2 } AFTER 1");
    EXPECT_EQ(negative.matrix.GetZeilen(), 0);
    EXPECT_EQ(negative.matrix.GetSpalten(), 0);
    EXPECT_EQ(negative.after, 1);

    Holder huge;
    huge.Read("MATRIX { 100000 100000 1 2 3 }");
    EXPECT_EQ(huge.matrix.GetZeilen(), 0);
    Holder hugeVector;
    hugeVector.Read("VECTOR { 9999999999 1 }");
    EXPECT_EQ(hugeVector.vector.GetSize(), 0);
}

TEST(LinalgReadTest, ACountThatIsNoIntegerIsAReadErrorAndChangesNothing) {
    Holder holder;
    holder.vector = MakeVector({3, 4});
    holder.Read("VECTOR { 2.5 1 2 }");
    EXPECT_TRUE(holder.vector == MakeVector({3, 4}));
    EXPECT_EQ(holder.after, 0);  // reading stopped at the error
}

TEST(LinalgReadTest, ConstructorReadsItself) {
    Holder holder;
    EXPECT_EQ(holder.Read("NEWVECTOR { 3 1 2 3 } AFTER 8"), 0);
    EXPECT_EQ(holder.constructed, 3);
    EXPECT_EQ(holder.after, 8);
}

}  // namespace
}  // namespace orvo
