"""Finds the small wrong changes that can be made in a source, through the eyes of the compiler."""

import re
from collections.abc import Iterator
from dataclasses import dataclass, field

from clang.cindex import Cursor, CursorKind, SourceLocation, Type, TypeKind

# an operator's kind and what can stand in its place
OPERATORS = {
    "<": ("comparison", ("<=", ">=")), "<=": ("comparison", ("<", ">")), "==": ("comparison", ("!=",)),
    ">": ("comparison", (">=", "<=")), ">=": ("comparison", (">", "<")), "!=": ("comparison", ("==",)),
    "&&": ("logical operator", ("||",)), "||": ("logical operator", ("&&",)),
    "+": ("arithmetic", ("-",)), "-": ("arithmetic", ("+",)), "*": ("arithmetic", ("/",)), "/": ("arithmetic", ("*",)),
    "+=": ("arithmetic", ("-=",)), "-=": ("arithmetic", ("+=",)), "%": ("arithmetic", ("/",)),
    "&": ("arithmetic", ("|",)), "|": ("arithmetic", ("&",)),
}
STEPS = {"++": "--", "--": "++"}

FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
             CursorKind.FUNCTION_TEMPLATE, CursorKind.CONVERSION_FUNCTION}
VARIABLES = {CursorKind.VAR_DECL, CursorKind.FIELD_DECL}
WRAPPERS = {CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR}
# Functions with a text for whoever reads what went wrong or asks for help, and which argument it is: no test is to repeat it.
REPORTS = {"report": 0, "reportException": 0, "guarded": 0, "add_subcommand": 1, "add_option": 2, "add_flag": 2}
# Functions that throw their texts.
THROWERS = {"fail", "failToWrite", "refuse", "expectSuccess"}
# What never runs; and what an exception says, which is for a reader to judge.
NEVER_CHANGED = {CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL, CursorKind.PARM_DECL, CursorKind.MACRO_DEFINITION,
                 CursorKind.CXX_THROW_EXPR}
JUMPS = {CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT}
INTEGERS = {TypeKind.CHAR_S, TypeKind.SHORT, TypeKind.USHORT, TypeKind.INT, TypeKind.UINT, TypeKind.LONG,
            TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG}

Spot = tuple[str, int]  # a file and an offset in it


@dataclass(frozen=True)
class Change:
    kind: str
    original: str
    mutated: str
    code: str  # the expression that takes the place's, or the statement that is put before it


@dataclass
class Place:
    """An expression that other ones can take the place of, or (start == end) where a statement can be put."""
    start: int
    end: int
    function: str
    as_bool: bool = False
    changes: list[Change] = field(default_factory=list)
    first_number: int = 0  # of its changes


@dataclass
class Constant:
    """A variable that must be computed at run time for its value to change."""
    start: int
    end: int
    rewrites: list[tuple[int, int, str]]
    uses: set[Spot]


@dataclass
class Source:
    path: str
    text: str  # one character per byte, so that the compiler's offsets hold
    places: dict[tuple[int, int], Place] = field(default_factory=dict)
    constants: dict[int, Constant] = field(default_factory=dict)


def spot_of(location: SourceLocation) -> Spot:
    return (location.file.name if location.file else "", location.offset)


def peeled(cursor: Cursor) -> Cursor:
    while cursor.kind in WRAPPERS:
        children = list(cursor.get_children())
        if len(children) != 1:
            break
        cursor = children[0]
    return cursor


def end_of_switch(switch: Cursor) -> Cursor:
    """The last statement of its last case, after which a break leaves only what ends anyway."""
    last = list(switch.get_children())[-1]
    while last.kind in (CursorKind.COMPOUND_STMT, CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT):
        inner = list(last.get_children())
        if not inner:
            break
        last = inner[-1]
    return last


def canonical(type_: Type) -> TypeKind:
    return type_.get_canonical().kind


def variables_in(cursor: Cursor) -> Iterator[Spot]:
    for inner in cursor.walk_preorder():
        if inner.kind == CursorKind.DECL_REF_EXPR and inner.referenced and inner.referenced.kind in VARIABLES:
            yield spot_of(inner.referenced.location)


def is_alike(one: Cursor, other: Cursor) -> bool:
    return (one.type.get_canonical().spelling == other.type.get_canonical().spelling
            and one.access_specifier == other.access_specifier)


class Finder:
    """Walks through one source as one compilation sees it. What the compiler itself computes stays as it is."""

    def __init__(self, source: Source, declarations: list[Cursor]) -> None:
        self.source = source
        self.needed_by_compiler: set[Spot] = set()
        self.reported: set[int] = set()  # where such texts are
        self.without_effect: set[int] = set()  # where statements are whose removal changes nothing
        self.function = ""
        self.result: Type | None = None
        self.macros = [(cursor.extent.start.offset, cursor.extent.end.offset) for cursor in declarations
                       if cursor.kind == CursorKind.MACRO_INSTANTIATION]
        for cursor in declarations:
            if not cursor.kind.is_preprocessing():
                self.visit(cursor)

    def text(self, start: int, end: int) -> str:
        return self.source.text[start:end]

    def text_of(self, cursor: Cursor) -> str:
        return self.text(cursor.extent.start.offset, cursor.extent.end.offset)

    def in_macro(self, cursor: Cursor) -> bool:
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        return any(first <= start and end <= last for first, last in self.macros)

    # what is noted

    def replace(self, cursor: Cursor, kind: str, mutated: str, as_bool: bool = False) -> None:
        key = (cursor.extent.start.offset, cursor.extent.end.offset)
        place = self.source.places.setdefault(key, Place(*key, self.function))
        place.as_bool |= as_bool
        change = Change(kind, self.text_of(cursor), mutated, mutated)
        if change not in place.changes:
            place.changes.append(change)

    def put_before(self, cursor: Cursor, change: Change) -> None:
        key = (cursor.extent.start.offset, cursor.extent.start.offset)
        self.source.places.setdefault(key, Place(*key, self.function)).changes.append(change)

    # declarations

    def visit(self, cursor: Cursor) -> None:
        if cursor.kind in NEVER_CHANGED or self.in_macro(cursor) or spot_of(cursor.location)[0] != self.source.path:
            return  # or a header that is included within a declaration
        if cursor.kind == CursorKind.CALL_EXPR:
            self.note_report(cursor)
        if cursor.kind in FUNCTIONS:
            self.visit_function(cursor)
        elif cursor.kind in VARIABLES:
            self.visit_variable(cursor)
        elif cursor.kind == CursorKind.TYPE_ALIAS_DECL:
            self.needed_by_compiler.update(variables_in(cursor))
        elif cursor.kind == CursorKind.LAMBDA_EXPR:
            self.visit_lambda(cursor)
        else:
            self.note(cursor)
            self.visit_children(cursor)

    def note_report(self, call: Cursor) -> None:
        texts = list(call.get_arguments())
        if call.spelling in REPORTS:
            texts = texts[REPORTS[call.spelling]:][:1]
        elif call.spelling not in THROWERS:
            texts = []
        for text in texts:
            self.reported.update(inner.extent.start.offset for inner in text.walk_preorder())

    def visit_children(self, cursor: Cursor) -> None:
        is_block = cursor.kind == CursorKind.COMPOUND_STMT
        if cursor.kind == CursorKind.SWITCH_STMT:
            self.without_effect.add(end_of_switch(cursor).extent.start.offset)
        compiler_needs_first = cursor.kind == CursorKind.CASE_STMT or self.is_decided_by_compiler(cursor)
        for index, child in enumerate(cursor.get_children()):
            if compiler_needs_first and index == 0:
                self.needed_by_compiler.update(variables_in(child))
                continue
            if is_block or cursor.kind in (CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT):
                self.note_removal(child)
            self.visit(child)

    def visit_function(self, cursor: Cursor) -> None:
        outside = self.function, self.result
        self.function, self.result = cursor.spelling, cursor.result_type
        if "constexpr" not in self.text(cursor.extent.start.offset, cursor.location.offset):
            self.visit_children(cursor)
        self.function, self.result = outside

    def visit_lambda(self, cursor: Cursor) -> None:
        outside, self.result = self.result, None
        self.visit_children(cursor)
        self.result = outside

    def visit_variable(self, cursor: Cursor) -> None:
        name = cursor.location.offset
        keyword = self.source.text.find("constexpr", cursor.extent.start.offset, name)
        is_array = self.source.text.startswith(f"{cursor.spelling}[]", name)
        if is_array and keyword < 0:
            return  # declared elsewhere too, hence not to be rewritten
        outside = self.function
        self.function = self.function or cursor.spelling
        for child in cursor.get_children():
            if child.extent.start.offset < name:  # part of the type
                self.needed_by_compiler.update(variables_in(child))
            else:
                self.visit(child)
        self.function = outside
        if keyword >= 0:
            self.note_constant(cursor, keyword, is_array and canonical(cursor.type.element_type) == TypeKind.CHAR_S)

    def note_constant(self, cursor: Cursor, keyword: int, is_text: bool) -> None:
        name = cursor.location.offset
        end = keyword + len("constexpr")
        is_member = cursor.semantic_parent.kind in (CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL)
        words = ["inline"] * is_member + ["const"] * (not self.text(end, name).startswith(" const "))
        rewrites = [(keyword, end, " ".join(words))]
        if is_text:  # no condition yields an array, but it yields where one begins
            rewrites.append((name, name + len(f"{cursor.spelling}[]"), f"* const {cursor.spelling}"))
        self.source.constants[name] = Constant(cursor.extent.start.offset, cursor.extent.end.offset, rewrites,
                                               set(variables_in(cursor)))

    # statements

    def note_removal(self, cursor: Cursor) -> None:
        """A statement for its effect alone is left out. Memory that is reserved beforehand has none that can be seen."""
        if cursor.kind == CursorKind.CALL_EXPR and cursor.spelling == "reserve":
            return
        ends_function = cursor.kind == CursorKind.RETURN_STMT and not list(cursor.get_children())
        if cursor.kind == CursorKind.BREAK_STMT and cursor.extent.start.offset in self.without_effect:
            return
        if cursor.kind.is_expression() or cursor.kind in JUMPS or ends_function or self.in_macro(cursor):
            self.put_before(cursor, Change("removed statement", self.text_of(cursor), "(removed)", "if (!{}) "))

    def note_return(self, cursor: Cursor) -> None:
        value = next(cursor.get_children(), None)
        if value is None:
            return
        inner, in_lambda = peeled(value), self.result is None
        result = canonical(value.type if in_lambda else self.result)
        if result == TypeKind.BOOL:
            self.note_negation(value)
        elif result in INTEGERS and not re.fullmatch(r"-?\d+", self.text_of(value)):
            self.replace(value, "returned value", f"({self.text_of(value)}) + 1")
        elif result == TypeKind.POINTER and inner.kind != CursorKind.CXX_NULL_PTR_LITERAL_EXPR:
            self.replace(value, "returned value", "nullptr")
        elif result == TypeKind.RECORD and not in_lambda and not self.is_empty(value):
            self.put_before(cursor, Change("returned value", self.text_of(value), "{}", "if ({}) return {{}}; "))

    def is_empty(self, value: Cursor) -> bool:
        """Whether a returned value is that of {} already."""
        is_text = re.match(r"std::(__cxx11::)?basic_string<char\b", self.result.get_canonical().spelling)
        return self.text_of(value) in ("{}", "nullptr", "std::nullopt", *(['""'] if is_text else []))

    def note_negation(self, condition: Cursor) -> None:
        """Of a condition that is not negated by a change of its own operator or literal."""
        inner = peeled(condition)
        is_comparison = self.operator_of(inner)[0] == "comparison"
        is_negation = inner.kind == CursorKind.UNARY_OPERATOR and self.text_of(inner).startswith("!")
        is_declaration = inner.kind in (CursorKind.DECL_STMT, CursorKind.VAR_DECL)
        if not (is_comparison or is_negation or is_declaration or inner.kind == CursorKind.CXX_BOOL_LITERAL_EXPR):
            self.replace(condition, "negation", f"!({self.text_of(condition)})", as_bool=True)

    # expressions

    def is_decided_by_compiler(self, cursor: Cursor) -> bool:
        return cursor.kind == CursorKind.IF_STMT and self.text_of(cursor).startswith("if constexpr")

    def note(self, cursor: Cursor) -> None:
        kind = cursor.kind
        if self.is_decided_by_compiler(cursor):
            return
        if kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR):
            self.note_negation(next(cursor.get_children()))
        elif kind == CursorKind.RETURN_STMT:
            self.note_return(cursor)
        elif kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR, CursorKind.CALL_EXPR):
            self.note_operator(cursor)
        elif kind == CursorKind.UNARY_OPERATOR:
            self.note_unary_operator(cursor)
        elif kind == CursorKind.DECL_REF_EXPR:
            self.note_enumerator(cursor)
        elif kind == CursorKind.MEMBER_REF_EXPR:
            self.note_field(cursor)
        else:
            self.note_literal(cursor)

    def operator_of(self, cursor: Cursor) -> tuple[str, tuple[str, ...]]:
        """The kind of the operator between two operands and what can stand in its place."""
        operands = list(cursor.get_children())
        between = self.text(operands[0].extent.end.offset, operands[-1].extent.start.offset) if operands else ""
        return OPERATORS.get(between.strip(), ("", ()))

    def note_operator(self, cursor: Cursor) -> None:
        kind, others = self.operator_of(cursor)
        if kind == "arithmetic" and canonical(cursor.type) not in INTEGERS:
            return
        operands = [self.text_of(operand) for operand in cursor.get_children()]
        for other in others:
            self.replace(cursor, kind, f"{operands[0]} {other} {operands[-1]}")

    def note_unary_operator(self, cursor: Cursor) -> None:
        operand = self.text_of(next(cursor.get_children()))
        text = self.text_of(cursor)
        if text.startswith("!"):
            self.replace(cursor, "negation", f"bool({operand})")
        elif text[:2] in STEPS:
            self.replace(cursor, "arithmetic", STEPS[text[:2]] + operand)
        elif text[-2:] in STEPS:
            self.replace(cursor, "arithmetic", operand + STEPS[text[-2:]])
        elif text[0] in "-~":
            self.replace(cursor, "arithmetic", operand)

    def note_enumerator(self, cursor: Cursor) -> None:
        enumerator = cursor.referenced
        if enumerator is None or enumerator.kind != CursorKind.ENUM_CONSTANT_DECL:
            return
        names = [sibling.spelling for sibling in enumerator.semantic_parent.get_children()]
        neighbour = names[(names.index(enumerator.spelling) + 1) % len(names)]
        self.replace(cursor, "enumerator", re.sub(r"\w+$", neighbour, self.text_of(cursor)))

    def note_field(self, cursor: Cursor) -> None:
        """Another field of the same type: the next one of its record."""
        field = cursor.referenced
        if field is None or field.kind != CursorKind.FIELD_DECL or field.is_bitfield():
            return
        twins = [sibling.spelling for sibling in field.semantic_parent.get_children()
                 if sibling.kind == CursorKind.FIELD_DECL and is_alike(sibling, field)]
        if field.spelling not in twins:
            return  # of a template, whose fields have other types
        neighbour = twins[(twins.index(field.spelling) + 1) % len(twins)]
        if neighbour != field.spelling:
            self.replace(cursor, "field", re.sub(r"\w+$", neighbour, self.text_of(cursor)))

    def note_literal(self, cursor: Cursor) -> None:
        text = self.text_of(cursor)
        if cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            self.replace(cursor, "literal", "false" if text == "true" else "true")
        elif cursor.kind == CursorKind.CHARACTER_LITERAL:
            self.replace(cursor, "literal", "'~'")
        elif (cursor.kind == CursorKind.STRING_LITERAL and text.startswith('"')
              and cursor.extent.start.offset not in self.reported):
            # of the same length, so that the type stays; __func__ is no text of the source
            self.replace(cursor, "literal", '"~' + text[1:] if text == '""' else '"~' + text[2:])
        elif cursor.kind == CursorKind.FLOATING_LITERAL:
            self.replace(cursor, "literal", f"{text} + 1")
        elif cursor.kind == CursorKind.INTEGER_LITERAL:
            self.replace(cursor, "literal", f"{text} + 1")
            self.replace(cursor, "literal", f"{text} - 1")
