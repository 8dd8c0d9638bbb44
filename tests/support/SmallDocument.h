// VELL: data-driven hierarchical state machines.
// tests/support/SmallDocument.h: the smallest document that runs, as it is or with a member
// changed.
#pragma once

#include "tests/support/DocumentBuilder.h"

namespace vell::test
{

/// A document with one node: "Stand", 10, a generic state that Start pushes.
inline DocumentBuilder SmallDocument()
{
    return DocumentBuilder().Start(10).Node(Generic("Stand", 10));
}

/// Gives `document` with a member of its head set to `value`.
inline DocumentBuilder WithHead(DocumentBuilder document, DURMBaseLib::__JSONTYPES__ member,
                                const Json& value)
{
    document.Head().Set(member, value);
    return document;
}

/// Gives `document` with a member of its root set to `value`.
inline DocumentBuilder WithRoot(DocumentBuilder document, DURMBaseLib::__JSONTYPES__ member,
                                const Json& value)
{
    document.Root().Set(member, value);
    return document;
}

} // namespace vell::test
