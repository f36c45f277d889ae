// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Type.h"

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

/// A text whose every type, conversion and overload is decided.
///
/// Operations are spelled: a pattern of the normalised text in which $0, $1, … stand for the operands. Their types
/// are those that the pattern wants; conversions are operations of their own.

namespace helvantine::hlsl
{

struct Function;
struct Statement;

/// A number, vector or matrix that is known: its components, row by row, as bits.
using Value = std::array<uint32_t, 16>;

/// A function of the normalised text's own, written out before the author's if it is used.
struct Helper
{
    std::string name;
    std::string text;
    std::vector<const Helper*> uses;
    std::vector<const Type*> types; ///< what must be declared before it
};

struct Expression;

struct Symbol
{
    enum class Kind : uint8_t
    {
        Local, ///< a parameter, too
        Global,
        Member ///< of a constant buffer
    };

    Kind kind = Kind::Local;
    std::string name;
    std::string spelling;
    Position at;
    const Type* type = nullptr;
    bool isConst = false;
    const Value* value = nullptr;      ///< of what is known while compiling
    Expression* initializer = nullptr; ///< of a global
    size_t global = 0;                 ///< index of the declaration that a Global or Member belongs to
};

struct Expression
{
    enum class Kind : uint8_t
    {
        Error,
        Constant,
        Variable,
        Spelled,
        Call, ///< of the author's function
        Member,
        Swizzle,       ///< of a vector; with one component a scalar
        MatrixSwizzle, ///< of one component
        Index,
        Assign,
        List ///< braces around what an array or a structure is made of
    };

    Kind kind = Kind::Error;
    Position at;
    const Type* type = nullptr;
    bool isAssignable = false;
    bool hasEffects = false;  ///< computing it twice, or not at all, would make a difference
    bool isPixelOnly = false; ///< needs derivatives, or is a pixel's alone
    uint32_t depth = 1;       ///< of the tree below
    std::vector<Expression*> operands;
    std::string text; ///< pattern, name of a member, components of a swizzle
    const Helper* helper = nullptr;
    const Value* value = nullptr;
    const Symbol* symbol = nullptr;
    const Function* function = nullptr;
    uint8_t count = 0;                   ///< of components
    std::array<uint8_t, 4> components{}; ///< of a swizzle; of a matrix's, row * 4 + column
};

struct Variable
{
    Symbol* symbol = nullptr;
    Expression* initializer = nullptr; ///< null without
    std::string modifiers;
};

struct Statement
{
    enum class Kind : uint8_t
    {
        Empty,
        Block,
        Declaration,
        Expression,
        If,
        For,
        While,
        Do,
        Switch,
        Case, ///< a label; without an expression: default
        Break,
        Continue,
        Return,
        Discard
    };

    Kind kind = Kind::Empty;
    Position at;
    std::string attribute;            ///< "[unroll]"
    Expression* expression = nullptr; ///< condition, value, or the expression itself
    Expression* step = nullptr;       ///< of a for loop
    Statement* first = nullptr;       ///< of a for loop: what it begins with
    std::vector<Statement*> body;     ///< of a block; of an if: one or two; of a loop: one
    std::vector<Variable> variables;
};

struct Parameter
{
    Symbol* symbol = nullptr;
    bool isIn = true;
    bool isOut = false;
    std::string modifiers;
    std::string semantic;
    Expression* standard = nullptr; ///< what a call without it hands over
};

struct Function
{
    std::string name;
    std::string spelling;
    Position at;
    const Type* result = nullptr;
    std::string semantic;
    std::string modifiers;
    std::vector<Parameter> parameters;
    Statement* body = nullptr; ///< null: only declared
};

/// What stands outside functions and takes part in the program.
struct Global
{
    enum class Kind : uint8_t
    {
        Variable,
        Resource,
        Buffer
    };

    Kind kind = Kind::Variable;
    Position at;
    std::string head;         ///< what stands before the name, or the buffer's head
    Symbol* symbol = nullptr; ///< of a variable or resource
    std::string tail;         ///< register
    struct Member
    {
        Symbol* symbol = nullptr;
        bool packsRows = false; ///< the order of a matrix
        std::string place;      ///< packoffset
    };
    std::vector<Member> members; ///< of a buffer
};

/// Something that is said about a text, in the order of reading.
struct Message
{
    Position at;
    std::string text;
};

struct Program
{
    TypeTable types;
    std::deque<Expression> expressions;
    std::deque<Statement> statements;
    std::deque<Symbol> symbols;
    std::deque<Structure> structures;
    std::deque<Function> functions;
    std::deque<Helper> helpers;
    std::deque<Value> values;
    std::vector<Global> globals;
    std::vector<std::string> files;
    std::vector<Message> errors;
    std::vector<Message> warnings;
};

} // namespace helvantine::hlsl
