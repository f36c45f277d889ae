// SPDX-License-Identifier: MIT
#include "shader/hlsl/Parser.h"

#include "shader/ShaderProgram.h"
#include "shader/hlsl/Names.h"

#include <algorithm>
#include <utility>

namespace helvantine::hlsl
{

namespace
{

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

std::string describe(const Token& token)
{
    return token.kind == Token::Kind::End ? "the end of the text" : quoted(token.text);
}

} // namespace

Parser::Parser(const Tokens& tokens, Program& program)
    : m_tokens(tokens), m_program(program), m_builder(program)
{
    m_scopes.emplace_back();
    program.files = tokens.files;
    for (const auto& [at, words] : tokens.warnings)
        m_builder.warn(at, words);
    for (const auto& [at, words] : tokens.errors)
        m_builder.fail(at, words);
}

void Parser::parse()
{
    while (!atEnd())
        parseGlobal();
}

const std::vector<Function*>* Parser::findFunctions(std::string_view name) const
{
    const auto found = m_scopes.front().find(name);
    return found == m_scopes.front().end() || found->second.functions.empty() ? nullptr
                                                                              : &found->second.functions;
}

const Token& Parser::peek(size_t ahead) const
{
    return m_tokens.tokens[std::min(m_at + ahead, m_tokens.tokens.size() - 1)];
}

const Token& Parser::next()
{
    const Token& token = peek();
    if (!atEnd())
        ++m_at;
    return token;
}

bool Parser::accept(std::string_view what)
{
    if (!is(what))
        return false;
    next();
    return true;
}

bool Parser::expect(std::string_view what)
{
    if (accept(what))
        return true;
    // A missing semicolon belongs to the line that lacks it.
    const Token& blamed = what == ";" && m_at > 0 ? m_tokens.tokens[m_at - 1] : peek();
    stop(blamed, quoted(what) + " is missing before " + describe(peek()));
    return false;
}

void Parser::stop(const Token& token, const std::string& words)
{
    if (m_at > m_tokens.tokens.size())
        return;
    m_builder.fail(token.at, words);
    m_at = m_tokens.tokens.size() + 1; // all that follows is the end
}

void Parser::skipBraces()
{
    int depth = 0;
    do {
        depth += is("{") ? 1 : is("}") ? -1 : 0;
        next();
    } while (depth > 0 && !atEnd());
}

std::string Parser::takeParentheses()
{
    std::string text;
    if (!expect("("))
        return text;
    while (!atEnd() && !is(")"))
        text += next().text;
    expect(")");
    return "(" + text + ")";
}

const Parser::Entity* Parser::find(std::string_view name) const
{
    for (auto scope = m_scopes.rbegin(); scope != m_scopes.rend(); ++scope)
        if (const auto found = scope->find(name); found != scope->end())
            return &found->second;
    return nullptr;
}

bool Parser::isName(const Token& token) const
{
    return token.isWord() && !isKeyword(token.text);
}

/// A name must stand here.
bool Parser::refusesName(const Token& token)
{
    if (isName(token))
        return false;
    stop(token, "a name is missing before " + describe(token));
    return true;
}

bool Parser::declareName(const Token& name)
{
    const auto [place, isNew] = m_scopes.back().try_emplace(name.text);
    if (!isNew)
        m_builder.fail(name.at, quoted(name.text) + " is declared twice");
    return isNew;
}

Symbol* Parser::declare(Symbol::Kind kind, const Token& name, const Type* type, bool isConst)
{
    Symbol& symbol = m_program.symbols.emplace_back();
    symbol.kind = kind;
    symbol.name = name.text;
    symbol.spelling = spell(name.text);
    symbol.at = name.at;
    symbol.type = type;
    symbol.isConst = isConst;
    if (declareName(name))
        m_scopes.back()[name.text].symbol = &symbol;
    return &symbol;
}

/// What the language once had, or has for other stages: each with words of its own.
bool Parser::refusesConstruct()
{
    const Token& token = peek();
    const auto isOf = [&token](std::initializer_list<std::string_view> words) {
        return std::ranges::find(words, token.text) != words.end();
    };
    if (isOf({"technique", "technique10", "technique11", "fxgroup"}) && token.isWord()) {
        m_builder.warn(token.at,
                       quoted(token.text) + " is ignored: programs are chosen by their entry points");
        while (!atEnd() && !is("{"))
            next();
        skipBraces();
        return true;
    }
    if (token.is("tbuffer"))
        stop(token, "'tbuffer' isn't supported; use cbuffer");
    else if (isOf({"interface", "namespace"}) && token.isWord())
        stop(token, quoted(token.text) + " isn't supported");
    else
        return false;
    return true;
}

void Parser::parseGlobal()
{
    if (accept(";") || refusesConstruct())
        return;
    if (is("cbuffer"))
        return parseBuffer();
    if (is("typedef"))
        return parseTypedef();
    m_functionAttributes.clear();
    while (is("["))
        m_functionAttributes += parseAttribute();
    const Modifiers modifiers = parseModifiers();
    const Type* type = parseType();
    if (accept(";"))
        return; // a structure alone
    if (isName(peek()) && peek(1).is("("))
        return parseFunction(modifiers, type);
    parseGlobalVariables(modifiers, type);
}

std::string Parser::parseSemantic()
{
    if (!accept(":"))
        return {};
    const Token& name = next();
    if (!name.isWord())
        stop(name, "a semantic is missing before " + describe(name));
    return " : " + std::string(name.text);
}

std::string Parser::parsePlace()
{
    std::string place;
    while (is(":") && !atEnd()) {
        next();
        const Token& word = next();
        if (word.is("register") || word.is("packoffset"))
            place += " : " + std::string(word.text) + takeParentheses();
        else if (!word.isWord())
            stop(word, "register or packoffset is missing before " + describe(word));
    }
    return place;
}

void Parser::skipAnnotations()
{
    if (!is("<"))
        return;
    m_builder.warn(peek().at, "annotations are ignored");
    while (!atEnd() && !accept(">"))
        next();
}

void Parser::parseBuffer()
{
    next();
    const size_t number = m_program.globals.size();
    Global buffer;
    buffer.kind = Global::Kind::Buffer;
    buffer.at = peek().at;
    const Token& name = next();
    if (refusesName(name))
        return;
    buffer.head = "cbuffer " + spell(name.text) + parsePlace();
    if (!expect("{"))
        return;
    while (!atEnd() && !is("}")) {
        const Modifiers modifiers = parseModifiers();
        const Type* type = parseType();
        do {
            const Token& member = next();
            if (refusesName(member))
                return;
            const Type* full = parseDimensions(type);
            if (full->isResource() || full->isVoid())
                m_builder.fail(member.at, quoted(member.text) + ": a constant buffer can't hold " +
                                              quoted(full->name()));
            if (holdsRowsMatrix(*full))
                m_builder.fail(member.at, quoted(member.text) +
                                              ": a constant buffer can't hold a matrix that "
                                              "isn't of float with two to four rows and columns");
            Symbol* symbol = declare(Symbol::Kind::Member, member, full, true);
            symbol->global = number;
            const std::string place = parsePlace();
            skipAnnotations();
            if (accept("=")) {
                m_builder.warn(member.at, "the value of " + quoted(member.text) +
                                              " is ignored: it comes from the buffer");
                parseInitializer();
            }
            buffer.members.push_back({symbol, modifiers.packsRows, place});
        } while (accept(","));
        if (!expect(";"))
            return;
    }
    expect("}");
    accept(";");
    m_program.globals.push_back(std::move(buffer));
}

void Parser::parseTypedef()
{
    next();
    parseModifiers();
    const Type* type = parseType();
    do {
        const Token& name = next();
        if (refusesName(name))
            return;
        const Type* full = parseDimensions(type);
        if (declareName(name))
            m_scopes.back()[name.text].type = full;
    } while (accept(","));
    expect(";");
}

void Parser::parseGlobalVariables(const Modifiers& modifiers, const Type* type)
{
    do
        parseGlobalVariable(modifiers, type);
    while (accept(","));
    expect(";");
}

/// What stands between the braces were states of a framework that isn't here.
void Parser::skipSamplerState(const Token& name)
{
    m_builder.warn(name.at, "the states of sampler " + quoted(name.text) +
                                " are ignored: samplers are bound by the host");
    if (accept("="))
        accept("sampler_state");
    skipBraces();
}

void Parser::parseGlobalVariable(const Modifiers& modifiers, const Type* element)
{
    const Token& name = next();
    if (refusesName(name))
        return;
    const Type* type = parseDimensions(element);
    Global global;
    global.at = name.at;
    if (type->isVoid()) {
        m_builder.fail(name.at, quoted(name.text) + " is void");
        type = m_builder.types().error();
    }
    Symbol* symbol = declare(Symbol::Kind::Global, name, type, modifiers.isConst || !modifiers.isStatic);
    symbol->global = m_program.globals.size();
    global.symbol = symbol;
    global.tail = parsePlace();
    skipAnnotations();
    if (type->isResource()) {
        global.kind = Global::Kind::Resource;
        if (is("{") || (is("=") && (peek(1).is("sampler_state") || peek(1).is("{"))))
            skipSamplerState(name);
        else if (accept("="))
            m_builder.fail(name.at, quoted(name.text) + ": a texture or sampler can't be given a value here");
        if (type->isArray() &&
            (type->count == 0 || type->count > textureRegisterCount || type->element->isArray()))
            m_builder.fail(name.at, quoted(name.text) +
                                        ": an array of textures or samplers has one size, of 1 to " +
                                        std::to_string(textureRegisterCount));
        m_program.globals.push_back(std::move(global));
        return;
    }
    bool isStatic = modifiers.isStatic;
    if (accept("=")) {
        symbol->initializer = m_builder.initialize(name.at, symbol->type, parseInitializer());
        if (!isStatic && modifiers.isConst)
            m_builder.warn(
                name.at,
                quoted(name.text) +
                    " is taken as static const; without static it would come from a constant buffer");
        isStatic |= modifiers.isConst;
        if (modifiers.isConst && symbol->initializer->value)
            symbol->value = symbol->initializer->value;
    } else if (isStatic && modifiers.isConst) {
        m_builder.fail(name.at, quoted(name.text) + " is const and has no value");
    }
    global.head = isStatic ? modifiers.isConst ? "static const " : "static " : "";
    m_program.globals.push_back(std::move(global));
}

void Parser::parseFunction(const Modifiers& modifiers, const Type* result)
{
    const Token& name = next();
    Function function;
    function.name = name.text;
    function.spelling = spell(name.text);
    function.at = name.at;
    function.result = result;
    function.modifiers = m_functionAttributes + modifiers.interpolation;
    next();
    m_scopes.emplace_back();
    if (m_object)
        function.parameters.push_back({const_cast<Symbol*>(m_object), true, true, "", "", nullptr});
    if (is("void") && peek(1).is(")"))
        next();
    while (!atEnd() && !is(")")) {
        function.parameters.push_back(parseParameter());
        if (!is(")") && !expect(","))
            break;
    }
    expect(")");
    function.semantic = parseSemantic();
    if (result->isArray())
        m_builder.fail(name.at, quoted(name.text) + ": a function can't return an array");
    Scope parameters = std::move(m_scopes.back());
    m_scopes.pop_back();
    if (m_object)
        function.spelling = helperPrefix + m_object->type->structure->name + "_" + function.name;
    const bool hasBody = is("{");
    Entity& entity = m_object ? m_methods[m_object->type->structure][name.text] : m_scopes.front()[name.text];
    Function* entered = enterFunction(std::move(function), name, entity);
    if (hasBody && m_object) {
        m_bodies.push_back({entered, std::move(parameters), m_at});
        skipBraces();
    } else if (hasBody)
        parseBody(*entered, std::move(parameters));
    else
        expect(";");
}

void Parser::parseBody(Function& function, Scope parameters)
{
    const Position at = peek().at;
    m_scopes.push_back(std::move(parameters));
    m_function = &function;
    m_hasReturned = false;
    m_ended.clear();
    if (function.body)
        m_builder.fail(at, quoted(function.name) + " is defined twice");
    function.body = parseBlock(false);
    if (!m_hasReturned && !atEnd() && !function.result->isVoid() && !function.result->isError())
        m_builder.fail(at, quoted(function.name) + " returns no value");
    m_function = nullptr;
    m_scopes.pop_back();
}

/// A function that was declared before, with the same parameters, is that one.
Function* Parser::enterFunction(Function function, const Token& name, Entity& entity)
{
    if (entity.symbol || entity.type)
        m_builder.fail(name.at, quoted(name.text) + " is declared twice");
    for (Function* known : entity.functions) {
        const bool isSame = std::ranges::equal(
            known->parameters, function.parameters,
            [](const Parameter& a, const Parameter& b) { return a.symbol->type == b.symbol->type; });
        if (!isSame)
            continue;
        if (known->result != function.result)
            m_builder.fail(name.at, quoted(name.text) + " was declared with another result");
        for (size_t i = 0; i < known->parameters.size(); ++i)
            if (!function.parameters[i].standard)
                function.parameters[i].standard = known->parameters[i].standard;
        function.body = known->body;
        *known = std::move(function);
        return known;
    }
    Function& made = m_program.functions.emplace_back(std::move(function));
    entity.functions.push_back(&made);
    return &made;
}

Parameter Parser::parseParameter()
{
    Parameter parameter;
    const Modifiers modifiers = parseModifiers();
    const Type* type = parseType();
    const Token& name = peek();
    parameter.isOut = modifiers.isOut;
    parameter.isIn = modifiers.isIn || !modifiers.isOut;
    parameter.modifiers = (modifiers.isUniform ? "uniform " : "") + modifiers.interpolation;
    Token unnamed = name;
    static constexpr std::string_view noName = "hv_unnamed";
    unnamed.text = noName;
    const bool hasName = isName(name);
    if (hasName)
        next();
    type = parseDimensions(type);
    if (type->isVoid() || (type->isArray() && type->isResource()))
        m_builder.fail(name.at,
                       "a parameter can't be " +
                           std::string(type->isVoid() ? "void" : "an array of textures or samplers"));
    if (hasName) {
        parameter.symbol = declare(Symbol::Kind::Local, name, type, modifiers.isConst || modifiers.isUniform);
    } else {
        parameter.symbol = &m_program.symbols.emplace_back();
        parameter.symbol->name = noName;
        parameter.symbol->spelling = std::string(noName) + std::to_string(m_program.symbols.size());
        parameter.symbol->type = type;
    }
    parameter.semantic = parseSemantic();
    if (accept("=")) {
        const Type* full = type;
        parameter.standard = m_builder.initialize(name.at, full, parseInitializer());
    }
    return parameter;
}

} // namespace helvantine::hlsl
