#include "provisioning/provisioning_document.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

namespace deskwatch {
namespace {

std::vector<ProvisioningElement> elementsIn(const std::string& text) {
    return readProvisioningDocument("p.xml", text).elements;
}

/// What is said about a text that is refused, after the name of the file.
std::string documentRefusal(const std::string& text) {
    try {
        elementsIn(text);
    } catch (const std::runtime_error& error) {
        const std::string what = error.what();
        EXPECT_EQ(what.find("p.xml"), 0U) << what;
        return what.substr(5);
    }
    return "it was read";
}

TEST(ReadProvisioningDocument, ElementsComeInOrderWithTheirLines) {
    const auto elements = elementsIn(
        "<EASProvisionDoc xmlns='Provision'>\n  <AllowWifi> 1\n</AllowWifi>\n\n  <AllowCamera/></EASProvisionDoc>");
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements[0].name, "AllowWifi");
    EXPECT_EQ(elements[0].value, "1");
    EXPECT_EQ(elements[0].line, 2);
    EXPECT_EQ(elements[1].value, "");
    EXPECT_EQ(elements[1].line, 5);
}

TEST(ReadProvisioningDocument, EnvelopeAndPrefixesDoNotMatter) {
    const auto elements =
        elementsIn("<p:Provision xmlns:p='Provision'><p:Policies><p:Policy><p:Data><p:EASProvisionDoc>"
                   "<p:AllowWifi>0</p:AllowWifi></p:EASProvisionDoc></p:Data></p:Policy></p:Policies>"
                   "</p:Provision>");
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_EQ(elements[0].name, "AllowWifi");
}

TEST(ReadProvisioningDocument, ListHasNoValue) {
    const auto elements = elementsIn("<EASProvisionDoc><L><Hash>a</Hash></L></EASProvisionDoc>");
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_TRUE(elements[0].isList);
    EXPECT_EQ(elements[0].value, "");
}

TEST(ReadProvisioningDocument, WhatIsNoXmlIsRefusedWithItsLine) {
    EXPECT_EQ(documentRefusal("<EASProvisionDoc>\n<AllowWifi>1</EASProvisionDoc>").find(":2: not valid XML: "), 0U);
    EXPECT_NE(documentRefusal("").find("not valid XML"), std::string::npos);
    EXPECT_NE(documentRefusal("{}").find(":1: not valid XML"), std::string::npos);
}

TEST(ReadProvisioningDocument, XmlWithoutTheDocumentIsRefused) {
    EXPECT_EQ(documentRefusal("<Provision/>"), ":1: this XML does not contain an EASProvisionDoc");
}

TEST(ReadProvisioningDocument, SecondDocumentIsRefused) {
    EXPECT_EQ(documentRefusal("<P>\n<EASProvisionDoc/>\n<EASProvisionDoc/></P>"),
              ":3: a second EASProvisionDoc; there must be one");
}

TEST(ReadProvisioningDocument, DocumentTypeMayHaveANameAndNoMore) {
    const std::string policy = "\n<EASProvisionDoc><AllowWifi>&e;</AllowWifi></EASProvisionDoc>";
    EXPECT_EQ(elementsIn("<!DOCTYPE d >\n<EASProvisionDoc><AllowWifi>0</AllowWifi></EASProvisionDoc>").size(), 1U);
    for (const auto* const type : {"[<!ENTITY e SYSTEM '/etc/passwd'>]", " []", "SYSTEM 'http://x/'", "PUBLIC 'a' 'b'",
                                   "[<!ENTITY a 'aaaaaaa'><!ENTITY e '&a;&a;&a;&a;&a;&a;&a;'>]"}) {
        const auto text = documentRefusal("<?xml version='1.0'?>\n<!DOCTYPE d " + std::string(type) + ">" + policy);
        EXPECT_EQ(text.find(":2: the document type (<!DOCTYPE) has declarations or refers to some"), 0U) << text;
    }
}

TEST(ReadProvisioningDocument, OnlyTheNamespaceOfPoliciesCounts) {
    const std::string inner = "<AllowWifi>0</AllowWifi><x:AllowWifi xmlns:x='urn:x'>1</x:AllowWifi>";
    for (const auto* const open :
         {"<EASProvisionDoc>", "<EASProvisionDoc xmlns='Provision'>", "<EASProvisionDoc xmlns='Provision:'>"}) {
        const auto elements = elementsIn(open + inner + "</EASProvisionDoc>");
        ASSERT_EQ(elements.size(), 2U) << open;
        EXPECT_EQ(elements[0].name, "AllowWifi") << open;
        EXPECT_EQ(elements[1].name, "{urn:x}AllowWifi") << open;
    }
    const auto undeclared = elementsIn("<Provision:EASProvisionDoc><Provision:AllowWifi/></Provision:EASProvisionDoc>");
    ASSERT_EQ(undeclared.size(), 1U);
    EXPECT_EQ(undeclared[0].name, "AllowWifi");
    EXPECT_EQ(documentRefusal("<EASProvisionDoc xmlns='urn:x'/>"), ":1: this XML does not contain an EASProvisionDoc");
}

TEST(ReadProvisioningDocument, WhatAServerSaysBesideAPolicyIsKept) {
    using Kind = ServerNotice::Kind;
    const std::string wrong = "<Status>3</Status>";
    const auto document = readProvisioningDocument(
        "p.xml",
        "<Provision>" + wrong + "\n<x:RemoteWipe xmlns:x='urn:x'/><s:DeviceInformation xmlns:s='Settings:'>" + wrong +
            "</s:DeviceInformation>\n<RemoteWipe/><AccountOnlyRemoteWipe/>\n<Policies><Policy>" + wrong +
            "</Policy><Policy><Status> 1 </Status><Data><EASProvisionDoc/></Data></Policy></Policies></Provision>");
    EXPECT_TRUE(document.hasPolicy);
    std::vector<std::tuple<Kind, std::string, long>> notices;
    for (const auto& notice : document.notices) {
        notices.emplace_back(notice.kind, notice.status, notice.line);
    }
    const std::vector<std::tuple<Kind, std::string, long>> expected{
        {Kind::Status, "3", 1}, {Kind::Wipe, "", 3}, {Kind::AccountWipe, "", 3}, {Kind::PolicyStatus, "3", 4}};
    EXPECT_EQ(notices, expected);
    EXPECT_FALSE(readProvisioningDocument("p.xml", "<Provision><RemoteWipe/></Provision>").hasPolicy);
}

TEST(ReadProvisioningDocument, DeepNestingIsRefused) {
    std::string text;
    for (int level = 0; level < 100'000; ++level) {
        text += "<a>";
    }
    EXPECT_NE(documentRefusal(text).find("not valid XML"), std::string::npos);
}

} // namespace
} // namespace deskwatch
