// The written form of a photo record, byte for byte.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

#include "orvo/model/photo.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

std::string Right(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}
// The keyword column: left-aligned in 12.
std::string Key(const std::string& keyword) {
    return keyword.size() >= 12 ? keyword : keyword + std::string(12 - keyword.size(), ' ');
}
std::string W4(const std::string& text) {
    return " " + Right(text, 4);
}
std::string W6(const std::string& text) {
    return " " + Right(text, 8);
}
std::string W14(const std::string& text) {
    return " " + Right(text, 18);
}
std::string Coord(const std::string& text) {
    return " " + Right(text, 21);
}
std::string Param(const std::string& text) {
    return " " + Right(text, 24);
}

std::string Written(const OvPhoto& photo) {
    OvWriterReset();
    std::ostringstream out;
    photo.Write(out);
    return out.str();
}

// The lines a photo with every default writes, from "PHOTOID" to "RESEAUSUBID".
std::string DefaultHead() {
    return Key("PHOTOID") + W4("{") + W4("0") + " \"\"}\n" + Key("COMMENT") + W4("\"") + "\"\n" +
           Key("DIGITALPAGE") + W4("0") + "\n" + Key("DIGITALROT") + W4("0") + "\n" +
           Key("DIGITAL") + W4("0") + "\n" + Key("DIGITIZERID") + W4("1") + "\n" +
           Key("CHECKACTIVE") + W4("0") + "\n" + Key("STATE") + W4("1") + "\n" + Key("ROTATION") +
           W4("0") + "\n" + Key("SCALE") + W6("0") + "\n" + Key("DIGIREGION") + W4("{") +
           Coord("0") + Coord("0") + Coord("0") + Coord("0") + "}\n" + Key("CAMERA") + W4("{") +
           W4("0") + W14("0") + W14("0") + W14("0") + W14("0") + W14("0") + W14("0") + " \"\"}\n" +
           Key("RESEAUFILE") + W4("\"") + "\"\n" + Key("RESEAUSUBID") + W4("0") + "\n";
}

// A transformation of type None in its block: the code, then an empty indented line.
std::string NoneBlock(const std::string& keyword) {
    return Key(keyword) + "\n{\n    0\n    \n}\n";
}

TEST(PhotoWrite, DefaultPhotoExactText) {
    EXPECT_EQ(Written(OvPhoto()),
              DefaultHead() + NoneBlock("PRERESTRAFO") + NoneBlock("MAINRESTRAFO"));
}

OvTrafo2d Trafo(eOvTrafo2DType type, std::initializer_list<double> params) {
    OvTrafo2d t;
    t.SetType(type);
    int i = 0;
    for (double p : params)
        t.SetParam(i++, p);
    return t;
}

TEST(PhotoWrite, DigitalPhotoExactText) {
    OvPhoto photo(7, "dsc_0007.jpg");
    photo.SetComment("east wall");
    photo.SetDigPictPage(2);
    photo.SetDigPictRot(1);
    photo.SetType(eOvPhotoDigital);
    photo.SetDigitizer(4000000000u);
    photo.GetFlag().SetFlag(kOvPhotoFlagCheckActive);
    photo.SetActiveFlag(0);
    photo.SetRotation(-90);
    photo.SetScale(0.0123456789);
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 6016.0, 4000.5));
    photo.SetCamera(
        OvCamera(3, 24.314752, 0.01274, -0.03391, -0.00020417, 3.6028e-07, 9.0, "Wide 24mm"));
    photo.SetReseauData(OvReseauDataDesc("body2.dres", 2));
    photo.SetReseauPreTrafo(Trafo(eOvTrafo2DHelmert, {0.5, 1.0, -2.0, 0.0}));
    photo.SetReseauMainTrafo(Trafo(eOvTrafo2DAffin, {1.5, 0.25, 0.0, -2.0, 0.0, 0.25}));
    photo.SetScreenPos(OvPosition(120.5, -40.25));
    photo.SetScreenScale(3);
    photo.SetLayer(5);  // not written

    const std::string expected =
        Key("PHOTOID") + W4("{") + W4("7") + " \"dsc_0007.jpg\"}\n" + Key("COMMENT") + W4("\"") +
        "east wall\"\n" + Key("DIGITALPAGE") + W4("2") + "\n" + Key("DIGITALROT") + W4("1") + "\n" +
        Key("DIGITAL") + W4("1") + "\n" + Key("DIGITIZERID") + W4("4000000000") + "\n" +
        Key("CHECKACTIVE") + W4("1") + "\n" + Key("STATE") + W4("0") + "\n" + Key("ROTATION") +
        W4("-90") + "\n" + Key("SCALE") + W6("0.0123457") + "\n" + Key("DIGIREGION") + W4("{") +
        Coord("0") + Coord("0") + Coord("6016") + Coord("4000.5") + "}\n" + Key("CAMERA") +
        W4("{") + W4("3") + W14("24.314752") + W14("0.01274") + W14("-0.03391") +
        W14("-0.00020417") + W14("3.6028e-07") + W14("9") + " \"Wide 24mm\"}\n" +
        Key("RESEAUFILE") + W4("\"") + "body2.dres\"\n" + Key("RESEAUSUBID") + W4("2") + "\n" +
        Key("PRERESTRAFO") + "\n{\n    1\n    " + Param("0.5") + Param("1") + Param("-2") +
        Param("0") + "\n    \n}\n" + Key("MAINRESTRAFO") + "\n{\n    2\n    " + Param("1.5") +
        Param("0.25") + Param("0") + Param("-2") + "\n    " + Param("0") + Param("0.25") + "\n}\n" +
        Key("SCREENPOS") + W4("{") + Coord("120.5") + Coord("-40.25") + "}\n" + Key("SCREENSIZE") +
        W4("3") + "\n";
    EXPECT_EQ(Written(photo), expected);
}

TEST(PhotoWrite, ScreenLinesOnlyForDigitalPhotos) {
    OvPhoto photo(1);
    photo.SetScreenPos(OvPosition(1.0, 2.0));
    photo.SetScreenScale(4);
    EXPECT_EQ(Written(photo).find("SCREEN"), std::string::npos);
    photo.SetType(eOvPhotoDigital);
    const std::string text = Written(photo);
    EXPECT_NE(text.find(Key("SCREENPOS") + W4("{") + Coord("1") + Coord("2") + "}\n"),
              std::string::npos);
    EXPECT_NE(text.find(Key("SCREENSIZE") + W4("4") + "\n"), std::string::npos);
}

TEST(PhotoWrite, InversePolynomialOnlyWhenSet) {
    OvPhoto photo;
    EXPECT_EQ(Written(photo).find("POLYRESINVTRAFO"), std::string::npos);
    OvTrafo2d poly = Trafo(eOvTrafo2DPolynomial, {});
    poly.SetParam(19, 1e-12);
    photo.SetPolyInvTrafo(poly);
    std::string block = Key("POLYRESINVTRAFO") + "\n{\n    4\n    ";
    for (int line = 0; line < 5; ++line) {
        for (int i = 0; i < 4; ++i)
            block += Param(line == 4 && i == 3 ? "1e-12" : "0");
        block += "\n    ";
    }
    block += "\n}\n";
    EXPECT_EQ(Written(photo),
              DefaultHead() + NoneBlock("PRERESTRAFO") + NoneBlock("MAINRESTRAFO") + block);
}

TEST(PhotoWrite, TiltTransformsFollowInListOrder) {
    OvPhoto photo;
    photo.AddTiltTrafo(OvTiltTrafo(4, "facade"));
    photo.AddTiltTrafo(OvTiltTrafo(2, "roof"));
    const std::string text = Written(photo);
    const std::string tail = DefaultHead() + NoneBlock("PRERESTRAFO") + NoneBlock("MAINRESTRAFO");
    ASSERT_EQ(text.compare(0, tail.size(), tail), 0);
    const std::size_t first = text.find(Key("TILTPLANE") + "\n{\n    " + Key("TILTID") + W4("{") +
                                        W4("4") + " \"facade\"}");
    const std::size_t second = text.find(Key("TILTPLANE") + "\n{\n    " + Key("TILTID") + W4("{") +
                                         W4("2") + " \"roof\"}");
    EXPECT_EQ(first, tail.size());
    ASSERT_NE(second, std::string::npos);
    EXPECT_GT(second, first);
    EXPECT_EQ(text.substr(text.size() - 3), "\n}\n");
}

TEST(PhotoWrite, TextsAreMadeReadable) {
    OvPhoto photo(1, "a \"quoted\"\nname");
    photo.SetComment(String("line\r\nend; not a comment ! either"));
    const std::string text = Written(photo);
    EXPECT_NE(text.find(" \"a 'quoted' name\"}"), std::string::npos);
    EXPECT_NE(text.find("\"line  end; not a comment ! either\"\n"), std::string::npos);
    // Very long texts are cut so that a line stays readable.
    photo.SetComment(String(std::string(9000, 'x').c_str()));
    const std::string longText = Written(photo);
    EXPECT_NE(longText.find("\"" + std::string(8000, 'x') + "\"\n"), std::string::npos);
    EXPECT_EQ(longText.find(std::string(8001, 'x')), std::string::npos);
}

TEST(PhotoWrite, StreamFormatIsRestored) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(3) << std::left;
    OvWriterReset();
    OvPhoto photo(1);
    photo.SetScale(0.25);
    photo.Write(out);
    EXPECT_NE(out.str().find(Key("SCALE") + W6("0.25") + "\n"), std::string::npos);
    EXPECT_EQ(out.precision(), 3);
    EXPECT_TRUE(out.flags() & std::ios_base::fixed);
    EXPECT_TRUE(out.flags() & std::ios_base::left);
}

}  // namespace
}  // namespace orvo
