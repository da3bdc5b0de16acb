#include "provisioning/provisioning_document.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "temporary_folder.h"

namespace deskwatch {
namespace {

class ProvisioningDocument : public testing::Test {
protected:
    std::vector<ProvisioningElement> read(const std::string& text) const {
        std::ofstream(file_, std::ios::binary) << text;
        return readProvisioningDocument(file_);
    }

    /// What is said about a file that is refused, without its name in front.
    std::string refusal(const std::string& text) const {
        try {
            read(text);
        } catch (const std::runtime_error& error) {
            const std::string what = error.what();
            EXPECT_EQ(what.find(file_.string()), 0U) << what;
            return what.substr(file_.string().size());
        }
        return "it was read";
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "provision.xml";
};

TEST_F(ProvisioningDocument, ElementsComeInOrderWithTheirLines) {
    const auto elements = read(
        "<EASProvisionDoc xmlns='Provision'>\n  <AllowWifi> 1\n</AllowWifi>\n\n  <AllowCamera/></EASProvisionDoc>");
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements[0].name, "AllowWifi");
    EXPECT_EQ(elements[0].value, "1");
    EXPECT_EQ(elements[0].line, 2);
    EXPECT_EQ(elements[1].value, "");
    EXPECT_EQ(elements[1].line, 5);
}

TEST_F(ProvisioningDocument, EnvelopeAndPrefixesDoNotMatter) {
    const auto elements = read("<p:Provision xmlns:p='Provision'><p:Policies><p:Policy><p:Data><p:EASProvisionDoc>"
                               "<p:AllowWifi>0</p:AllowWifi></p:EASProvisionDoc></p:Data></p:Policy></p:Policies>"
                               "</p:Provision>");
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_EQ(elements[0].name, "AllowWifi");
}

TEST_F(ProvisioningDocument, ListHasNoValue) {
    const auto elements = read("<EASProvisionDoc><L><Hash>a</Hash></L></EASProvisionDoc>");
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_TRUE(elements[0].isList);
    EXPECT_EQ(elements[0].value, "");
}

TEST_F(ProvisioningDocument, WhatIsNoXmlIsRefusedWithItsLine) {
    EXPECT_EQ(refusal("<EASProvisionDoc>\n<AllowWifi>1</EASProvisionDoc>").find(":2: not valid XML: "), 0U);
    EXPECT_NE(refusal("").find("not valid XML"), std::string::npos);
    EXPECT_NE(refusal("{}").find(":1: not valid XML"), std::string::npos);
}

TEST_F(ProvisioningDocument, XmlWithoutTheDocumentIsRefused) {
    EXPECT_EQ(refusal("<Provision/>"), ":1: this XML does not contain an EASProvisionDoc");
}

TEST_F(ProvisioningDocument, SecondDocumentIsRefused) {
    EXPECT_EQ(refusal("<P>\n<EASProvisionDoc/>\n<EASProvisionDoc/></P>"),
              ":3: a second EASProvisionDoc; there must be one");
}

TEST_F(ProvisioningDocument, DocumentTypeIsRefusedBeforeAnyEntityIsRead) {
    const auto secret = folder().path() / "secret";
    std::ofstream(secret) << "1";
    const auto text = refusal("<?xml version='1.0'?>\n<!DOCTYPE d [<!ENTITY e SYSTEM '" + secret.string() +
                              "'>]>\n<EASProvisionDoc><AllowWifi>&e;</AllowWifi></EASProvisionDoc>");
    EXPECT_EQ(text.find(":2: a provisioning document must not have a document type"), 0U) << text;
}

TEST_F(ProvisioningDocument, EntitiesThatGrowAreRefused) {
    std::string text = "<!DOCTYPE d [<!ENTITY a0 'aaaaaaaaaa'>";
    for (int level = 1; level < 12; ++level) {
        text.append("<!ENTITY a").append(std::to_string(level)).append(" '");
        for (int copy = 0; copy < 6; ++copy) {
            text.append("&a").append(std::to_string(level - 1)).append(";");
        }
        text += "'>";
    }
    EXPECT_EQ(refusal(text + "]><EASProvisionDoc><X>&a11;</X></EASProvisionDoc>")
                  .find(":1: a provisioning document must not have a document type"),
              0U);
}

TEST_F(ProvisioningDocument, FileBeyondAllMeasureIsRefused) {
    EXPECT_EQ(refusal(std::string(1'000'001, ' ')),
              " is too large for a provisioning document, which has at most 1000000 bytes");
}

TEST_F(ProvisioningDocument, DeepNestingIsRefused) {
    std::string text;
    for (int level = 0; level < 100'000; ++level) {
        text += "<a>";
    }
    EXPECT_NE(refusal(text).find("not valid XML"), std::string::npos);
}

TEST_F(ProvisioningDocument, MissingFileIsNamed) {
    EXPECT_THROW(readProvisioningDocument("/nowhere/provision.xml"), std::runtime_error);
    EXPECT_THROW(readProvisioningDocument("/tmp"), std::runtime_error);
}

TEST_F(ProvisioningDocument, LastPolicyOfATraceCountsAsAClientTakesIt) {
    const auto policy = [](const std::string& length) {
        return "< 200\n<| <?xml version=\"1.0\"?>\n<| <Provision><EASProvisionDoc>\n<|   <MinDevicePasswordLength>" +
               length + "</MinDevicePasswordLength>\n<|   <MinDevicePasswordLength>" + length +
               "</MinDevicePasswordLength>\n<| </EASProvisionDoc></Provision>\n<= 03 01\n\n";
    };
    const std::string head = "# deskwatch exchange trace\n\n> POST\n>| <Provision><EASProvisionDoc/></Provision>\n";
    const auto elements = read(head + policy("6") + policy("99") + "< 200\n<| <Provision/>\n");
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_EQ(elements[0].value, "16");
    EXPECT_EQ(elements[0].line, 16);
    EXPECT_EQ(refusal(head), ": no server sent a policy in this trace");
}

} // namespace
} // namespace deskwatch
