// Draw files that cannot be used: each gets one line that names the file, the entry, the field and what was expected.
#include "apps/krsview/draw_file.h"
#include "tests/apps/draw_kit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

std::string errorOf(std::string const& text) { return cfReadDrawing(text, "marks.json").error; }

// Of one entry.
std::string errorOfEntry(std::string const& entry) { return errorOf(drawFile(entry)); }

}  // namespace

TEST(DrawFileErrors, aGoodFileHasNone) { EXPECT_EQ(errorOf(R"({"version": 1, "draw": []})"), ""); }

TEST(DrawFileErrors, theFileItselfIsChecked)
{
  EXPECT_EQ(errorOf(""), "marks.json: line 1, column 1: a value is expected");
  EXPECT_EQ(errorOf("[]"), "marks.json: the file: expected an object, found []");
  EXPECT_EQ(errorOf("{}"), "marks.json: the file: version: expected 1, but the field is missing");
  EXPECT_EQ(errorOf(R"({"version": 2, "draw": []})"), "marks.json: the file: version: expected 1, found 2");
  EXPECT_EQ(errorOf(R"({"version": "1", "draw": []})"), "marks.json: the file: version: expected 1, found \"1\"");
  EXPECT_EQ(errorOf(R"({"version": 1})"), "marks.json: the file: draw: expected a list of entries, but the field is missing");
  EXPECT_EQ(errorOf(R"({"version": 1, "draw": {}})"), "marks.json: the file: draw: expected a list of entries, found {}");
  EXPECT_EQ(errorOf(R"({"version": 1, "draw": [], "drawn": 1})"), "marks.json: the file: drawn: this field is not known here");
  EXPECT_EQ(errorOf(R"({"version": 1, "draw": [3]})"), "marks.json: entry 0: expected an object, found 3");
  EXPECT_EQ(errorOf(R"({"version": 1, "clientFromImage": {"matrix": [1, 2, 2, 4]}, "draw": []})"),
            "marks.json: clientFromImage: matrix: expected four numbers by rows, with an inverse, found [1,2,2,4]");
}

TEST(DrawFileErrors, theEntryAndTheFieldAreNamed)
{
  std::string const good = R"({"kind": "circle", "center": [1, 2], "radius": 3})";
  EXPECT_EQ(errorOf(drawFile(good + ", " + good + R"(, {"kind": "circle", "center": [1, 2]})")),
            "marks.json: entry 2 (circle): radius: expected a number of at least 0, but the field is missing");
}

TEST(DrawFileErrors, everyTextThatIsCutOffIsRefused)
{
  std::string const whole =
      drawFile(R"({"kind": "polygon", "points": [[1, 2], [3, 4.5], [5, 6]], "color": "#102030", "fill": true})");
  ASSERT_EQ(errorOf(whole), "");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    ccDrawing const drawing = cfReadDrawing(whole.substr(0, length), "marks.json");
    EXPECT_FALSE(drawing) << length;
    EXPECT_EQ(drawing.size(), 0u) << length;
    EXPECT_EQ(std::count(drawing.error.begin(), drawing.error.end(), '\n'), 0) << length;
  }
}

TEST(DrawFileErrors, everyBadFieldIsToldOf)
{
  struct {
    char const* entry;
    char const* error;  // after "marks.json: entry 0"
  } const cases[] = {
      // The fields that all have.
      {R"({})", ": kind: expected a text, but the field is missing"},
      {R"({"kind": 3})", ": kind: expected a text, found 3"},
      {R"({"kind": "disc"})", " (disc): kind: expected a kind that can be drawn, found \"disc\""},
      {R"({"kind": "point", "pos": [1, 2], "coords": "world"})", " (point): coords: expected display, image or client, found \"world\""},
      {R"({"kind": "point", "pos": [1, 2], "layer": 1})", " (point): layer: expected image, overlay or both, found 1"},
      {R"({"kind": "point", "pos": [1, 2], "color": "pink"})",
       " (point): color: expected a colour: a name as red or dkGreen, \"#rrggbb\" or a palette index 0 to 255, found \"pink\""},
      {R"({"kind": "point", "pos": [1, 2], "color": "#12345"})",
       " (point): color: expected a colour: a name as red or dkGreen, \"#rrggbb\" or a palette index 0 to 255, found \"#12345\""},
      {R"({"kind": "point", "pos": [1, 2], "color": "#12345g"})",
       " (point): color: expected a colour: a name as red or dkGreen, \"#rrggbb\" or a palette index 0 to 255, found \"#12345g\""},
      {R"({"kind": "point", "pos": [1, 2], "color": 256})",
       " (point): color: expected a colour: a name as red or dkGreen, \"#rrggbb\" or a palette index 0 to 255, found 256"},
      {R"({"kind": "point", "pos": [1, 2], "width": -1})", " (point): width: expected a whole number from 0 to 10000, found -1"},
      {R"({"kind": "point", "pos": [1, 2], "width": 1.5})", " (point): width: expected a whole number from 0 to 10000, found 1.5"},
      {R"({"kind": "point", "pos": [1, 2], "width": "3"})", " (point): width: expected a whole number from 0 to 10000, found \"3\""},
      {R"({"kind": "point", "pos": [1, 2], "style": "wavy"})",
       " (point): style: expected solid, dash, dot, dashDot or dashDotDot, found \"wavy\""},
      {R"({"kind": "point", "pos": [1, 2], "join": "mitre"})", " (point): join: expected round or bevel, found \"mitre\""},
      {R"({"kind": "point", "pos": [1, 2], "cap": 0})", " (point): cap: expected round, flat or square, found 0"},
      {R"({"kind": "point", "pos": [1, 2], "fill": 1})", " (point): fill: expected true or false, found 1"},
      {R"({"kind": "point", "pos": [1, 2], "radius": 1})", " (point): radius: this field is not known here"},
      {R"({"kind": "point", "pos": [1, 2], "Color": "red"})", " (point): Color: this field is not known here"},
      // Points and lists.
      {R"({"kind": "point"})", " (point): pos: expected two numbers [x, y], but the field is missing"},
      {R"({"kind": "point", "pos": [1]})", " (point): pos: expected two numbers [x, y], found [1]"},
      {R"({"kind": "point", "pos": [1, 2, 3]})", " (point): pos: expected two numbers [x, y], found [1,2,3]"},
      {R"({"kind": "point", "pos": [1, "2"]})", " (point): pos: expected two numbers [x, y], found [1,\"2\"]"},
      {R"({"kind": "point", "pos": [1, null]})", " (point): pos: expected two numbers [x, y], found [1,null]"},
      {R"({"kind": "point", "pos": {"x": 1, "y": 2}})", " (point): pos: expected two numbers [x, y], found {\"x\":1,\"y\":2}"},
      {R"({"kind": "pointSet", "points": []})", " (pointSet): points: expected a list of at least one value, found []"},
      {R"({"kind": "polyline", "points": [[1, 2], [3]]})", " (polyline): points[1]: expected two numbers [x, y], found [3]"},
      {R"({"kind": "polyline", "points": [[1, 2], [3, 4]], "closed": "yes"})", " (polyline): closed: expected true or false, found \"yes\""},
      // Figures.
      {R"({"kind": "lineSeg", "p1": [1, 2]})", " (lineSeg): p2: expected two numbers [x, y], but the field is missing"},
      {R"({"kind": "line", "pos": [1, 2], "dir": [0, 0]})", " (line): this figure is not possible: ccMathError::Singular (unit of a zero vector)"},
      {R"({"kind": "polygon", "points": [[1, 2]], "fillRule": 3})", " (polygon): fillRule: expected a whole number from 0 to 2, found 3"},
      {R"({"kind": "polygon", "points": [[1, 2]], "fillRule": 0, "fill": true})",
       " (polygon): fillRule: expected what agrees with fill, found 0"},
      {R"({"kind": "rect", "ul": [1, 2]})", " (rect): sz: expected the size [width, height] (or lr), but the field is missing"},
      {R"({"kind": "rect", "ul": [1, 2], "sz": [1, 2], "lr": [3, 4]})",
       " (rect): lr: expected the size [width, height] not beside sz, found [3,4]"},
      {R"({"kind": "affineRect", "center": [1, 2], "xLength": -1, "yLength": 2})",
       " (affineRect): xLength: expected a number of at least 0, found -1"},
      {R"({"kind": "affineRect", "center": [1, 2], "xLength": 1, "yLength": 2, "skew": 90})",
       " (affineRect): this figure is not possible: ccShapesError::DegenerateShape (affine rectangle with flat skew)"},
      {R"({"kind": "genRect", "center": [1, 2]})", " (genRect): halfLengths: expected two numbers [x, y], but the field is missing"},
      {R"({"kind": "genRect", "center": [1, 2], "halfLengths": [3, -4]})",
       " (genRect): halfLengths: expected two numbers of at least 0, found [3,-4]"},
      {R"({"kind": "genRect", "center": [1, 2], "hx": 3})", " (genRect): hy: expected a number of at least 0, but the field is missing"},
      {R"({"kind": "genRect", "center": [1, 2], "hx": 3, "hy": 4, "handed": 0})", " (genRect): handed: expected 1 or -1, found 0"},
      {R"({"kind": "genRect", "center": [1, 2], "hx": 3, "hy": 4, "orient": "N"})",
       " (genRect): orient: expected an angle in degrees, found \"N\""},
      {R"({"kind": "genRect", "center": [1, 2], "hx": 3, "hy": 4, "skew": -90})",
       " (genRect): skew: expected an angle between -90 and 90 degrees, found -90"},
      {R"({"kind": "genRect", "center": [1, 2], "hx": 3, "hy": 4, "rounding": [1.1, 0]})",
       " (genRect): rounding: expected two numbers from 0 to 1, found [1.1,0]"},
      {R"({"kind": "genRect", "center": [1, 2], "hx": 3, "hy": 4, "rounding": [0, 0], "round": [1, 1]})",
       " (genRect): round: expected lengths not beside the fractions of rounding, found [1,1]"},
      {R"({"kind": "circle", "center": [1, 2], "radius": -3})", " (circle): radius: expected a number of at least 0, found -3"},
      {R"({"kind": "ellipse", "center": [1, 2], "radii": [1]})", " (ellipse): radii: expected two numbers [x, y], found [1]"},
      {R"({"kind": "ellipseArc", "center": [1, 2], "radii": [1, 2], "start": 0, "span": 361})",
       " (ellipseArc): this figure is not possible: ccShapesError::BadParams (span of an arc)"},
      {R"({"kind": "ellipseArc2", "center": [1, 2], "radii": [1, 2], "start": 0})",
       " (ellipseArc2): span: expected an angle in degrees, but the field is missing"},
      {R"({"kind": "circleAnnulus", "center": [1, 2], "firstRadius": 3})",
       " (circleAnnulus): secondRadius: expected a number of at least 0, but the field is missing"},
      {R"({"kind": "ellipseAnnulus", "center": [1, 2], "first": {"radii": [1, 2]}, "second": 3})",
       " (ellipseAnnulus): second: expected an object, found 3"},
      {R"({"kind": "ellipseAnnulus", "center": [1, 2], "first": {"radii": [1, 2], "center": [3, 4]}, "second": {"radii": [1, 2]}})",
       " (ellipseAnnulus): first: center: this field is not known here"},
      {R"({"kind": "genAnnulus", "center": [1, 2], "first": {}, "second": {}})",
       " (genAnnulus): first: halfLengths: expected two numbers [x, y], but the field is missing"},
      {R"({"kind": "ellipseAnnulusSection", "center": [1, 2], "firstRadius": 3, "secondRadius": 4, "start": 1})",
       " (ellipseAnnulusSection): stop: expected an angle in degrees, but the field is missing"},
      {R"({"kind": "coordAxes", "origin": [1, 2], "xEnd": [3, 4]})", " (coordAxes): yEnd: expected two numbers [x, y], but the field is missing"},
      {R"({"kind": "genPoly", "vertices": [[1, 2]]})", " (genPoly): vertices[0]: expected an object, found [1,2]"},
      {R"({"kind": "genPoly", "vertices": [{"point": [1, 2], "rounding": 3}]})",
       " (genPoly): vertices[0]: rounding: this field is not known here"},
      {R"({"kind": "genPoly", "vertices": [{"point": [1, 2]}, {"point": [3, 4], "span": 360}]})",
       " (genPoly): this figure is not possible: ccShapesError::BadParams (span of a segment)"},
      {R"({"kind": "genPoly", "vertices": [{"point": [1, 2]}], "closed": true})",
       " (genPoly): this figure is not possible: ccShapesError::BadGeom (a closed polygon of fewer than two vertices)"},
      {R"({"kind": "genPoly", "vertices": [{"point": [0, 0]}, {"point": [9, 0], "roundingSize": 50}, {"point": [9, 9]}]})",
       " (genPoly): vertices: expected roundings that fit their corners and leave room for each other, found "
       "[{\"point\":[0,0]},{\"point\":[9,0],\"roundin..."},
      {R"({"kind": "genPoly", "vertices": [{"point": [1, 2]}], "closed": false, "isOpen": true})",
       " (genPoly): isOpen: expected nothing beside closed, found true"},
      {R"({"kind": "wireframe", "vertices": [{"point": [1, 2]}], "showVertices": 1})",
       " (wireframe): showVertices: expected true or false, found 1"},
      {R"({"kind": "genPoly", "vertices": [{"point": [1, 2]}], "showVertices": true})",
       " (genPoly): showVertices: this field is not known here"},
      {R"({"kind": "smdgdPoly", "vertices": [{"point": [1, 2]}], "name": 1})", " (smdgdPoly): name: expected a text, found 1"},
      {R"({"kind": "bezierCurve", "controlPoints": [[1, 2], [3, 4]]})",
       " (bezierCurve): controlPoints: expected four points, found [[1,2],[3,4]]"},
      {R"({"kind": "bezierCurve", "controlPoints": [[1, 2], [3, 4], [5, 6], [7, 8]], "weights": [1, 1, 1]})",
       " (bezierCurve): weights: expected four numbers above 0, found [1,1,1]"},
      {R"({"kind": "bezierCurve", "controlPoints": [[1, 2], [3, 4], [5, 6], [7, 8]], "weights": [1, 0, 1, 1]})",
       " (bezierCurve): this figure is not possible: ccShapesError::BadParams (weight of a control point)"},
      {R"({"kind": "bezierPath", "curves": [{"controlPoints": [[1, 2], [3, 4], [5, 6], [7, 8]]}, {"controlPoints": [[1, 2], [3, 4], [5, 6], [7, 8]]}]})",
       " (bezierPath): this figure is not possible: ccShapesError::BadParams (curves of a path with a gap)"},
      {R"({"kind": "deBoorSpline", "controlPoints": [[1, 2], [3, 4]], "weights": [1]})",
       " (deBoorSpline): weights: expected as many numbers as control points, found [1]"},
      {R"({"kind": "deBoorSpline", "controlPoints": [[1, 2], [3, 4]], "weights": [1, "2"]})",
       " (deBoorSpline): weights[1]: expected a number, found \"2\""},
      {R"({"kind": "hermiteSpline", "controlPoints": [[1, 2], [3, 4]], "controlTangents": [[1, 2]]})",
       " (hermiteSpline): controlTangents: expected as many tangents as control points, found [[1,2]]"},
      {R"({"kind": "hermiteSpline", "controlPoints": [[1, 2]], "controlTangents": [5]})",
       " (hermiteSpline): controlTangents: expected two numbers [x, y] or null for each control point, found [5]"},
      {R"({"kind": "interpSpline", "controlPoints": [[1, 2]], "intervalMode": 3})",
       " (interpSpline): intervalMode: expected a whole number from 0 to 2, found 3"},
      {R"({"kind": "interpSpline", "controlPoints": [[1, 2]], "endConditions": 2})",
       " (interpSpline): endConditions: expected a whole number from 0 to 1, found 2"},
      {R"({"kind": "shapeTree", "shapes": [{"kind": "circle", "center": [1, 2], "radius": 1}, {"kind": "circle", "center": [1, 2]}]})",
       " (shapeTree): shapes[1] (circle): radius: expected a number of at least 0, but the field is missing"},
      {R"({"kind": "shapeTree", "shapes": [{"kind": "text"}]})", " (shapeTree): shapes[0]: kind: expected a shape, found \"text\""},
      {R"({"kind": "shapeTree", "shapes": [{"kind": "line", "pos": [1, 2], "dir": [1, 2]}]})",
       " (shapeTree): shapes[0]: kind: expected a shape, found \"line\""},
      {R"({"kind": "shapeTree", "shapes": [{"kind": "circle", "center": [1, 2], "radius": 1, "color": "red"}]})",
       " (shapeTree): shapes[0] (circle): color: this field is not known here"},
      // Text, icons, pels.
      {R"({"kind": "text", "at": [1, 2]})", " (text): text: expected a text, but the field is missing"},
      {R"({"kind": "text", "text": "a", "at": [1, 2], "alignment": "left"})",
       " (text): alignment: expected topLeft, topCenter, topRight, centerLeft, center, centerRight, bottomLeft, bottomCenter or "
       "bottomRight, found \"left\""},
      {R"({"kind": "text", "text": "\u03bc", "at": [1, 2]})", " (text): text: expected characters up to U+00FF, found \"\xCE\xBC\""},
      {R"({"kind": "text", "text": "a", "at": [1, 2], "font": {"height": 0}})",
       " (text): font: height: expected a whole number from 1 to 500, found 0"},
      {R"({"kind": "text", "text": "a", "at": [1, 2], "font": {"size": 9}})", " (text): font: size: this field is not known here"},
      {R"({"kind": "text", "text": "a", "at": [1, 2], "width": 9})", " (text): width: this field is not known here"},
      {R"({"kind": "icon", "at": [1, 2], "rows": ["01", "0"], "colors": ["red"]})",
       " (icon): rows: expected texts of equal length out of digits, . and +, found [\"01\",\"0\"]"},
      {R"({"kind": "icon", "at": [1, 2], "rows": ["0a"], "colors": ["red"]})",
       " (icon): rows: expected texts of equal length out of digits, . and +, found [\"0a\"]"},
      {R"({"kind": "icon", "at": [1, 2], "rows": ["0"], "colors": ["#ff0000"]})",
       " (icon): colors: expected colours by name or palette index, found [\"#ff0000\"]"},
      {R"({"kind": "pels", "at": [1, 2]})", " (pels): grey8: expected a list of at least one value, but the field is missing"},
      {R"({"kind": "pels", "at": [1, 2], "grey8": [[1, 2], [3]]})", " (pels): grey8: expected rows of equal length, found [[1,2],[3]]"},
      {R"({"kind": "pels", "at": [1, 2], "grey8": [[1, 256]]})",
       " (pels): grey8: expected rows of whole numbers from 0 to 255, found [[1,256]]"},
      {R"({"kind": "pels", "at": [1, 2], "grey8": [[1]], "rgb": [["red"]]})", " (pels): rgb: expected nothing beside grey8, found [[\"red\"]]"},
      {R"({"kind": "pels", "at": [1, 2], "grey8": [[1]], "maskValue": 300})",
       " (pels): maskValue: expected a whole number from 0 to 255, found 300"},
      // Whole pels.
      {R"({"kind": "set"})", " (set): color: expected a colour: a name as red or dkGreen, \"#rrggbb\" or a palette index 0 to 255, but the "
                             "field is missing"},
      {R"({"kind": "fillRect", "color": "red", "ul": [1.5, 2], "sz": [1, 1]})",
       " (fillRect): ul: expected two whole numbers [x, y] in pels, found [1.5,2]"},
      {R"({"kind": "fillRect", "color": "red", "ul": [1, 2], "sz": [0, 1]})", " (fillRect): sz: expected two whole numbers of at least 1, found [0,1]"},
      {R"({"kind": "fillRect", "color": "red", "ul": [1e30, 2], "sz": [1, 1]})",
       " (fillRect): ul: expected two whole numbers [x, y] in pels, found [1e+30,2]"},
      {R"({"kind": "outline", "ul": [1, 2], "sz": [3, 4], "width": 0})", " (outline): width: expected a whole number from 1 to 10000, found 0"},
      {R"({"kind": "outline3D", "ul": [1, 2], "sz": [3, 4], "color": "red"})", " (outline3D): color: this field is not known here"},
      {R"({"kind": "drawTo", "start": [1, 2]})", " (drawTo): to: expected a list of points (or relPels), but the field is missing"},
      {R"({"kind": "drawTo", "start": [1, 2], "relPels": [[1.5, 0]]})",
       " (drawTo): relPels: expected a list of steps [x, y] in whole pels, found [[1.5,0]]"},
      {R"({"kind": "clipRect", "ul": [1, 2], "sz": [0, 4]})", " (clipRect): sz: expected two numbers above 0, found [0,4]"},
      {R"({"kind": "sketch", "draw": [{"kind": "circle", "center": [1, 2]}]})",
       " (sketch): draw[0] (circle): radius: expected a number of at least 0, but the field is missing"},
      {R"({"kind": "sketch", "draw": [{"kind": "point", "pos": [1, 2], "coords": "image"}]})",
       " (sketch): draw[0] (point): coords: this field is not known here"},
  };
  for (auto const& c : cases)
    EXPECT_EQ(errorOfEntry(c.entry), std::string("marks.json: entry 0") + c.error) << c.entry;
}

TEST(DrawFileErrors, numbersThatAreNoneAreRefused)
{
  for (char const* const number : {"NaN", "nan", "Infinity", "-inf", "1e999", "0x10", "1.", ".5", "+1", "--1"})
    EXPECT_NE(errorOfEntry(std::string(R"({"kind": "circle", "center": [1, 2], "radius": )") + number + "}"), "") << number;
}

TEST(DrawFileErrors, aFileThatIsMissingOrAFolderIsToldOf)
{
  TestFolder const folder;
  EXPECT_EQ(cfReadDrawFile(folder.file("none.json")).error, folder.file("none.json").string() + ": cannot be read");
  EXPECT_EQ(cfReadDrawFile(folder.path()).error, folder.path().string() + ": cannot be read");
}

TEST(DrawFileErrors, namesAreMadeOneLine)
{
  EXPECT_EQ(cfReadDrawing("{}", "two\nlines").error.find('\n'), std::string::npos);
  EXPECT_EQ(errorOfEntry("{\"kind\": \"a\\nb\"}").find('\n'), std::string::npos);
}
