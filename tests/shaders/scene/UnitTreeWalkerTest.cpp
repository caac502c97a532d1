#include "shaders/scene/TreeWalker.h"
#include "tests/shaders/scene/SceneTest.h"
#include <memory>

namespace {

/// Hands out the elements of a test's scene as a host does that makes them as they are asked for: a new one at each
/// call, in the memory of one that was released.
class OnDemand {
public:
    ITreeElement* Make(const FakeElement* of)
    {
        if (of == nullptr)
            return nullptr;
        if (fReleased.empty())
            fReleased.push_back(fMade.emplace_back(std::make_unique<Element>(*this)).get());
        Element* const element = fReleased.back();
        fReleased.pop_back();
        element->fOf = of;
        element->fCount = 1;
        return element;
    }
    size_t MostAtOnce() const { return fMade.size(); }
    bool AllReleased() const { return fReleased.size() == fMade.size(); }

private:
    struct Element final : ITreeElement {
        OnDemand& fHost;
        const FakeElement* fOf = nullptr;
        uint32_t fCount = 0;

        explicit Element(OnDemand& host) : fHost(host) { }

        /// What it stands for, as long as someone holds it.
        const FakeElement& Of() const
        {
            if (fCount == 0)
                ADD_FAILURE() << "a call of a released element";
            return *fOf;
        }
        MCErr QueryInterface(const GUID&, void**) override { return kMCNoInterface; }
        uint32_t AddRef() override { return ++fCount; }
        uint32_t Release() override
        {
            if (--fCount == 0)
                fHost.fReleased.push_back(this);
            return fCount;
        }
        void GetScene(IScene**) override { }
        void GetName(TMCString& name) override { name = Of().fName; }
        void GetFirstChild(ITreeElement** out) override
        {
            *out = fHost.Make(Of().fChildren.empty() ? nullptr : Of().fChildren[0]);
        }
        void GetNextSibling(ITreeElement** out) override { *out = fHost.Make(Of().NextSibling()); }
        void GetParent(ITreeElement** out) override { *out = fHost.Make(Of().fParent); }
        void GetHotPoint(TVector3&) override { }
        void GetBoundingBox(TBBox3D&, int32_t, bool) override { }
        void GetNameScratch(TMCString&) override { }
        void GetGlobalTransform(TTransform3D&) override { }
        void GetTreeTransform(TTreeTransform&) override { }
    };

    std::vector<std::unique_ptr<Element>> fMade;
    std::vector<Element*> fReleased;
};

std::string Walk(ITreeElement* root)
{
    std::string names;
    TreeWalker walker(root);
    for (ITreeElement* tree = walker.First(); tree != nullptr; tree = walker.Next()) {
        TMCString255 name;
        tree->GetName(name);
        names += name.GetText() + std::string(" ");
    }
    EXPECT_EQ(walker.Next(), nullptr);
    return names;
}

std::string WalkOnDemand(const FakeElement& root)
{
    OnDemand host;
    MCCountedPtr<ITreeElement> made;
    *made.Address() = host.Make(&root);
    const std::string names = Walk(made.Get());
    EXPECT_LE(host.MostAtOnce(), 4u); // the root, the mark, the current one and the next
    made = nullptr;
    EXPECT_TRUE(host.AllReleased());
    return names;
}

class TreeWalkerTest : public testing::Test {
protected:
    FakeScene fScene;
    FakeElement& fA = fScene.Add("a");
    FakeElement& fB = fScene.Add("b", &fA);
    FakeElement& fC = fScene.Add("c", &fB);
    FakeElement& fD = fScene.Add("d", &fA);
    FakeElement& fE = fScene.Add("e");
};

TEST_F(TreeWalkerTest, GoesThroughTheRootAndItsDescendantsInOrder)
{
    EXPECT_EQ(Walk(fScene.fRoot), "Root a b c d e ");
    EXPECT_EQ(Walk(&fA), "a b c d ");
    EXPECT_EQ(Walk(&fC), "c ");
    EXPECT_EQ(Walk(nullptr), "");
    std::string row = "Root a b c d e ";
    for (int i = 0; i < 40; ++i) {
        const std::string name = std::to_string(i);
        fScene.Add(name, i % 3 == 0 ? fScene.fRoot : fScene.fRoot->fChildren.back());
        row += name + ' ';
    }
    EXPECT_EQ(Walk(fScene.fRoot), row);
    EXPECT_EQ(WalkOnDemand(*fScene.fRoot), row);
    EXPECT_EQ(
        WalkOnDemand(fA), "a b c d "); // not on to its siblings, though it is never the same object again
}

TEST_F(TreeWalkerTest, FindsItsWayBackFromAnyDepth)
{
    FakeElement* deepest = &fE;
    for (uint32_t level = 0; level < TreeWalker::kFirstMark + 99; ++level)
        deepest = &fScene.Add("f", deepest);
    fScene.Add("last");
    EXPECT_TRUE(Walk(fScene.fRoot).ends_with(" last "));
    EXPECT_TRUE(WalkOnDemand(*fScene.fRoot).ends_with(" last "));
}

TEST_F(TreeWalkerTest, EndsWhereTheWayBackIsLost)
{
    fB.fParent = nullptr;
    EXPECT_EQ(Walk(fScene.fRoot), "Root a b c ");
    fB.fParent = &fE; // another element than it came from, whose sibling comes next
    fScene.Add("f");
    EXPECT_EQ(Walk(fScene.fRoot), "Root a b c f ");
    EXPECT_EQ(Walk(&fA), "a b c ");
}

TEST_F(TreeWalkerTest, EndsOnLinksThatLeadInCircles)
{
    const auto expectEnd = [&](const char* start) {
        const std::string names = Walk(fScene.fRoot);
        EXPECT_TRUE(names.starts_with(start)) << names.substr(0, 40);
        EXPECT_LT(std::ranges::count(names, ' '), TreeWalker::kFirstMark + 10);
    };
    fE.fNext = &fE;
    expectEnd("Root a b c d e e ");
    fE.fNext = nullptr;
    fD.fNext = &fB;
    expectEnd("Root a b c d b c d ");
    fD.fNext = nullptr;
    for (FakeElement* const ancestor : {&fC, &fB, &fA, fScene.fRoot}) {
        fC.fChildren = {ancestor};
        expectEnd("Root a b c ");
    }
    fC.fChildren.clear();
    fC.fParent = &fE; // back from the depth by another way
    fE.fNext = &fA;
    expectEnd("Root a b c a b c ");
}

TEST(TreeWalkerLimitTest, EndsOnCirclesOfElementsThatAreNeverTheSameObject)
{
    FakeElement root("a"); // in no scene, which would note each call
    root.fChildren = {&root};
    OnDemand host;
    MCCountedPtr<ITreeElement> made;
    *made.Address() = host.Make(&root);
    TreeWalker walker(made.Get());
    uint32_t visits = 0;
    for (ITreeElement* tree = walker.First(); tree != nullptr; tree = walker.Next())
        ++visits;
    EXPECT_EQ(visits, TreeWalker::kMostVisits);
}

} // namespace
