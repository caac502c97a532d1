#include "shaders/scene/TreeWalker.h"
#include "tests/shaders/scene/SceneTest.h"

namespace {

std::string Walk(FakeElement* root)
{
    std::string names;
    TreeWalker walker(root);
    for (ITreeElement* tree = walker.First(); tree != nullptr; tree = walker.Next()) {
        TMCString255 name;
        tree->GetName(name);
        names += name.GetText() + std::to_string(walker.Depth()) + ' ';
    }
    EXPECT_EQ(walker.Next(), nullptr);
    EXPECT_EQ(walker.VisitedCount(), std::ranges::count(names, ' '));
    return names;
}

TEST(TreeWalkerTest, GoesThroughTheRootAndItsDescendantsInOrder)
{
    FakeScene scene;
    FakeElement& a = scene.Add("a");
    FakeElement& b = scene.Add("b", &a);
    FakeElement& c = scene.Add("c", &b);
    scene.Add("d", &a);
    scene.Add("e");
    EXPECT_EQ(Walk(scene.fRoot), "Root0 a1 b2 c3 d2 e1 ");
    EXPECT_EQ(Walk(&a), "a0 b1 c2 d1 ");
    EXPECT_EQ(Walk(&c), "c0 ");
    EXPECT_EQ(Walk(nullptr), "");
    b.fParent = nullptr; // the way back is lost
    EXPECT_EQ(Walk(scene.fRoot), "Root0 a1 b2 c3 ");
    b.fParent = &scene.Add("a"); // the way back leads to another object, and the walk ends there too
    scene.Add("f");
    EXPECT_EQ(Walk(&a), "a0 b1 c2 ");
}

TEST(TreeWalkerTest, FindsItsWayBackFromAnyDepth)
{
    FakeScene scene;
    FakeElement* deepest = nullptr;
    for (int level = 0; level < 33000; ++level)
        deepest = &scene.Add("a", deepest);
    scene.Add("last");
    EXPECT_TRUE(Walk(scene.fRoot).ends_with(" last1 "));
}

} // namespace
