// Ten thousand random edits of a random document, each compared with the model: every byte of the text, every result
// and the index. Repeat a failed run with --gtest_random_seed and the number that it printed.
#include <gtest/gtest.h>

#include <iostream>
#include <random>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Xml/XmlInvariants.h"
#include "Tests/Frameworks/Xml/XmlModel.h"
#include "Tests/Frameworks/Xml/XmlTestFile.h"
#include "Tests/Support/RandomSeed.h"

namespace {

constexpr int Edits = 10'000;
constexpr std::size_t LargeText = 4'000;
constexpr int MaxChildren = 5;
constexpr int MaxStartDepth = 3;

const std::vector<std::string> Names = {"a", "b", "item", "INFO_ITEM", "x-1", "ns:e", "\xC3\xA4"};
const std::vector<std::string> AttributeNames = {"name", "type", "value", "v", "n:m"};
const std::vector<std::string> Values = {"",    "1",          "a \"b\" 'c'", "<&>",  "line\nfeed", "]]>x]]>",
                                         "]]>", "\xC3\xA4/>", "&amp;",       "a=b ", "/"};
const std::vector<std::string> Texts = {" ",
                                        "\n",
                                        "\r\n\t",
                                        "text",
                                        " text ",
                                        "a > b",
                                        "&amp;&lt;",
                                        "<!-- <a> ' -->",
                                        "<?p '?>",
                                        "<![CDATA[<a>&]]>",
                                        "\n<!-- -->\n",
                                        " <?p?> text",
                                        "]]>"};
const std::vector<std::string> Blanks = {" ", "\n", "\t ", "  "};

class RandomEdits {
public:
    RandomEdits(unsigned seed, XmlModel& model, XmlDocument& document)
        : m_random(seed), m_model(model), m_document(document) {}

    void Build() {
        ModelElement& top = m_model.Top();
        top.content.push_back({"<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!-- <r> -->\n", nullptr});
        top.content.push_back({"", MakeElement(&top, 0)});
        top.content.push_back({Below(2) == 0 ? "\n" : "<!-- end -->", nullptr});
        m_document.SetDocumentText(m_model.Text().c_str());
    }

    void Step() {
        const bool isLarge = m_document.GetDocumentText().size() > LargeText;
        switch (Below(16)) {
            case 0:
            case 1:
            case 2:
            case 3:
                Find();
                break;
            case 4:
            case 5:
                EXPECT_EQ(m_document.IntoElement(), m_model.Into());
                break;
            case 6:
            case 7:
                EXPECT_EQ(m_document.OutOfElement(), m_model.OutOf());
                break;
            case 8:
                Reset();
                break;
            case 9:
            case 10:
                isLarge ? Remove() : Add();
                break;
            case 11:
                Add();
                break;
            case 12:
                Remove();
                break;
            default:
                SetAttribute();
        }
    }

    void Compare() {
        ASSERT_EQ(m_document.GetDocumentText(), m_model.Text());
        ASSERT_EQ(m_document.GetTagName(), m_model.Main() == nullptr ? "" : m_model.Main()->name);
        const std::string& name = Pick(AttributeNames);
        ASSERT_EQ(m_document.GetAttribute(name.c_str()), m_model.Attribute(name));
    }

    void CompareWithFreshParse() {
        ASSERT_EQ(CheckIndex(m_document), "");
        XmlDocument fresh;
        const bool isWellFormed = fresh.SetDocumentText(m_document.GetDocumentText().c_str());
        ASSERT_EQ(isWellFormed, m_document.IsWellFormed());
        ASSERT_EQ(CompareIndex(m_document, fresh), "");
    }

    void SaveAndLoad() {
        const XmlTestFile file;
        ASSERT_TRUE(m_document.Save(file.Path()));
        ASSERT_EQ(file.Read(), m_model.Text());
        const bool isWellFormed = m_document.IsWellFormed();
        ASSERT_EQ(m_document.Load(file.Path()), isWellFormed);
        ASSERT_EQ(m_document.GetDocumentText(), m_model.Text());
        m_model.ResetPosition();
    }

private:
    unsigned Below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(m_random); }

    const std::string& Pick(const std::vector<std::string>& texts) {
        return texts[Below(static_cast<unsigned>(texts.size()))];
    }

    std::unique_ptr<ModelElement> MakeElement(ModelElement* parent, int depth) {
        auto element = std::make_unique<ModelElement>();
        element->name = Pick(Names);
        element->parent = parent;
        element->isEmpty = depth > 0 && Below(3) == 0;
        element->tail = Below(3) == 0 ? Pick(Blanks) : "";
        for (const std::string& name : AttributeNames) {
            if (Below(2) == 0) {
                const std::string equal = Below(4) == 0 ? " = " : "=";
                const std::string value = std::to_string(Below(1000));
                const std::string quote = Below(2) == 0 ? "'" : "\"";
                element->attributes.push_back({name, value, Pick(Blanks) + name + equal, quote + value + quote});
            }
        }
        if (element->isEmpty) {
            return element;
        }
        element->endTagTail = Below(6) == 0 ? Pick(Blanks) : "";
        const unsigned children = depth < MaxStartDepth ? Below(MaxChildren) + (depth == 0 ? 3 : 0) : 0;
        for (unsigned child = 0; child < children; ++child) {
            element->content.push_back({Below(2) == 0 ? Pick(Texts) : "\n", nullptr});
            element->content.push_back({"", MakeElement(element.get(), depth + 1)});
        }
        element->content.push_back({Below(2) == 0 ? Pick(Texts) : "", nullptr});
        return element;
    }

    void Find() {
        const std::string& name = Pick(Names);
        if (Below(2) == 0) {
            EXPECT_EQ(m_document.FindElement(), m_model.Find(""));
        } else {
            EXPECT_EQ(m_document.FindElement(name.c_str()), m_model.Find(name));
        }
    }

    void Reset() {
        if (Below(4) == 0) {
            m_document.ResetPosition();
            m_model.ResetPosition();
        } else {
            m_document.ResetMainPosition();
            m_model.ResetMainPosition();
        }
    }

    void Add() {
        constexpr unsigned Flags[] = {0, 0, 0, 0, 1, 2, 4, 0x1000, 0x2000, 0x4000, 0x4001, 0x2002, 0x5004, 3};
        const unsigned flags = Flags[Below(std::size(Flags))];
        const std::string& name = Pick(Names);
        const std::string& data = Pick(Values);
        const bool isAdded = m_document.AddElement(name.c_str(), data.c_str(), flags);
        EXPECT_EQ(isAdded, m_model.Add(name, data, flags));
        if (isAdded) {
            EXPECT_EQ(m_document.GetData(), data);
        }
    }

    void Remove() {
        // The root mostly stays, or little would be left to edit.
        if (m_model.Main() != nullptr && m_model.Main()->parent == &m_model.Top() && Below(50) != 0) {
            return;
        }
        EXPECT_EQ(m_document.RemoveElement(), m_model.Remove());
    }

    void SetAttribute() {
        const std::string& name = Pick(AttributeNames);
        const std::string& value = Pick(Values);
        EXPECT_EQ(m_document.SetAttribute(name.c_str(), value.c_str()), m_model.SetAttribute(name, value));
    }

    std::mt19937 m_random;
    XmlModel& m_model;
    XmlDocument& m_document;
};

TEST(XmlRandom, ten_thousand_edits_leave_the_text_that_the_model_has) {
    const unsigned seed = RandomSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    XmlModel model;
    XmlDocument document;
    RandomEdits edits(seed, model, document);
    edits.Build();
    for (int edit = 0; edit < Edits && !testing::Test::HasFailure(); ++edit) {
        edits.Step();
        edits.Compare();
        if (edit % 5 == 0) {
            edits.CompareWithFreshParse();
        }
        if (edit % 500 == 499) {
            edits.SaveAndLoad();
        }
    }
}

}  // namespace
