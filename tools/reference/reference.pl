#!/usr/bin/perl
# reference.pl ROOT OUT [FILTERS]: writes the reference into the folder OUT, as ./kaz reference does.
#
# Its source are the declaration tables under ROOT. A comment of `///` lines above an entry holds the member's sentence
# and, indented, a line of code that shows it; the one above a class holds what its lines need first. FILTERS is the
# program kaz_filters, which writes the page of the filters. OUT/programs/ gets a program of each page's lines.
#
# Exit code 1 when a member lacks its sentence or its line, or a document gives other counts than the tables.
use strict;
use warnings;

my ($root, $out, $filters) = @ARGV;
die "usage: reference.pl ROOT OUT [FILTERS]\n" unless defined $out;
my @problems;

sub content {
    my ($path) = @_;
    open my $file, '<', $path or die "reference: cannot read $path: $!\n";
    local $/;
    my $text = <$file>;
    return $text;
}

sub save {
    my ($name, $text) = @_;
    open my $file, '>', "$out/$name" or die "reference: cannot write $out/$name: $!\n";
    print $file $text;
    close $file or die "reference: cannot write $out/$name: $!\n";
}

# --- reading the tables ---------------------------------------------------------------------------------------------

my $string    = qr/"(?:[^"\\]|\\.)*"/;
my $quoted    = qr/'(?:[^'\\]|\\.)'/;

# The value of adjacent string literals.
sub literal {
    my ($source) = @_;
    my $value = join '', map { substr $_, 1, -1 } $source =~ /$string/g;
    $value =~ s/\\(.)/$1/g;
    return $value;
}

# A comment's sentence and code.
sub comment {
    my ($text) = @_;
    my (@sentence, @code);
    for ($text =~ m{^\s*/// ?(.*?)\s*$}mg) {
        if (/^    (.*)/) { push @code, $1 }
        else             { push @sentence, $_ }
    }
    return (join(' ', @sentence), \@code);
}

# The entries between a table's braces, or the arguments between a call's parentheses: [comment, expression]. Outside of
# brackets < only opens a template's arguments.
sub entries {
    my ($body) = @_;
    my (@entries, $comment, $expression, $depth, $angles);
    ($comment, $expression, $depth, $angles) = ('', '', 0, 0);
    my $finish = sub {
        $expression =~ s/^\s+|\s+$//g;
        push @entries, [$comment, $expression] if length $expression;
        ($comment, $expression) = ('', '');
    };
    while ($body =~ m{\G(?:(///[^\n]*\n)|(//[^\n]*\n)|($string|$quoted|[^,<>(){}\[\]/"']+)|(.))}sgc) {
        my ($kept, $skipped, $run, $character) = ($1, $2, $3, $4);
        if    (defined $kept)    { $comment .= $kept }
        elsif (defined $skipped) { }
        elsif (defined $run)     { $expression .= $run }
        elsif ($character eq ',' && $depth == 0 && $angles == 0) { $finish->() }
        else {
            $angles++ if $character eq '<' && $depth == 0;
            $angles-- if $character eq '>' && $depth == 0 && $angles > 0;
            $depth++ if $character =~ /[({\[]/;
            $depth-- if $character =~ /[)}\]]/;
            $expression .= $character;
        }
    }
    $finish->();
    return @entries;
}

# What a maker without arguments returns, such as handleProperty(), with the comment above it.
my $makers = content("$root/objects/include/objects/wrapper.h");
sub made {
    my ($name) = @_;
    $makers =~ m{((?:[ ]*//[^\n]*\n)*)(?:template[^\n]*\n)?(?:inline )?REAL\w+ $name\(\) \{\s*return ((?:[^"]|$string)*?);}
        or return;
    return ($1, $2);
}

# A member from its entry in the file's text.
sub member {
    my ($file, $text, $comment, $expression) = @_;
    if ($expression =~ /^(\w+)(?:<\w+>)?\(\)$/) {
        my ($general, $call) = made($1) or die "$file: cannot read $expression\n";
        $comment ||= $general;
        $expression = $call;
    } elsif (my ($macro, $argument) = $expression =~ /^(\w+)\((\w+)\)$/) {
        my ($parameter, $body) = $text =~ /^#define $macro\((\w+)\) (.*)$/m or die "$file: cannot read $expression\n";
        $expression = $body =~ s/#$parameter\b/"$argument"/gr;
    }
    my ($maker, $arguments) = $expression =~ /^(?:host::)?(\w+)\(\s*(.*)\)$/s
        or die "$file: cannot read $expression\n";
    my ($first) = $arguments =~ /^((?:$string\s*)+)/ or die "$file: no name in $expression\n";
    my %member = (declaration => literal($first), assigned => $maker eq 'accessor');
    if ($maker !~ /^(?:method|accessor|constant)$/) {
        my $type;
        if ($text =~ /REALproperty $maker\(const char\* name,[^)]*\) \{\s*return ([\w:]+)\(name, ("\w+"|type)/) {
            ($maker, $type) = ($1, $2);
        }
        ($type) = $arguments =~ /^$string,\s*($string)/ if !$type || $type eq 'type';
        $member{declaration} .= ' as ' . literal($type);
        $member{assigned} = $maker =~ /settable/;
        $member{readOnly} = !$member{assigned};
    }
    ($member{name}) = $member{declaration} =~ /^(\w+)/;
    ($member{sentence}, $member{code}) = comment($comment);
    return \%member;
}

# The tables of a file by name.
sub tables {
    my ($file, $text) = @_;
    my %tables;
    while ($text =~ /^REAL(?:property|constant|methodDefinition) (\w+)\[\] = \{(.*?)\};$/msg) {
        my ($name, $body) = ($1, $2);
        $tables{$name} = [map { member($file, $text, @$_) } entries($body)];
    }
    return \%tables;
}

my @kinds = ('Properties', 'Methods', 'Constants', 'Shared methods', 'Events');

# The classes of a folder by the name of their record.
sub classes {
    my ($folder) = @_;
    my %classes;
    for my $file (glob("'$root/$folder/src/'*.mm")) {
        my $text   = content($file);
        my $tables = tables($file, $text);
        while ($text =~ m{((?:^///[^\n]*\n)*)^REALclassDefinition (\w+) =\s*(\w+)(?:<(\w+)>)?\((.*?)\);\n}msg) {
            my ($comment, $record, $maker, $structure, $arguments) = ($1, $2, $3, $4, $5);
            my %class = (file => $file);
            if ($structure) {
                ($class{name}) = $text =~ /struct Names<$structure> \{\s*static constexpr char hostClass\[\] = "(\w+)"/;
            } else {
                $arguments =~ s{^\s*(\{[^{}]*\}),?}{};
                my $description = $1;
                ($class{name})       = $description =~ /\.name = "(\w+)"/;
                ($class{superclass}) = $description =~ /\.superclass = "(\w+)"/;
            }
            ($class{sentence}, $class{code}) = comment($comment);
            my @lists = $arguments =~ /(\{\}|\w+)/g;
            for my $i (0 .. $#lists) {
                next if $lists[$i] eq '{}';
                $class{$kinds[$i]} = $tables->{$lists[$i]} or die "$file: no table $lists[$i]\n";
            }
            $classes{$record} = \%class;
        }
    }
    return \%classes;
}

# The classes in the order in which an entry registers them.
sub registered {
    my ($entry, $folder) = @_;
    my $classes = classes($folder);
    return map { $classes->{$_} // die "$folder: no class $_\n" } content("$root/$entry") =~ /^\s*&\w+::(\w+),/mg;
}

# --- the studio's tables --------------------------------------------------------------------------------------------

# What stands between the brace that ends a pattern's match and the one that closes it.
sub braced {
    my ($text, $from) = @_;
    my $depth = 1;
    pos($text) = $from;
    while ($text =~ m{\G(?://[^\n]*|$string|$quoted|([{}])|[^{}"'/]+|.)}sgc) {
        next if !defined $1;
        $depth += $1 eq '{' ? 1 : -1;
        return substr $text, $from, pos($text) - 1 - $from if $depth == 0;
    }
    die "reference: a brace is not closed\n";
}

# A member from its entry in the file's text: a call of method() or property(), or of a function that returns one, a
# text, or a text in braces.
sub studioMember {
    my ($file, $text, $comment, $expression) = @_;
    my %member;
    ($member{sentence}, $member{code}) = comment($comment);
    if ($expression =~ /^\{?($string)/) {
        $member{declaration} = literal($1);
    } else {
        my ($maker, $arguments) = $expression =~ /^(\w+)(?:<[^()]*>)?\(\s*(.*)\)$/s
            or die "$file: cannot read $expression\n";
        my @arguments = map { $_->[1] } entries($arguments);
        if ($maker !~ /^(?:method|property)$/) {
            my ($made, $rest) = $text =~ /^Framework\w+ $maker\(const char\* \w+\) \{\s*return (\w+)\(\s*\w+, (.*?)\);\n\}/ms
                or die "$file: cannot read $expression\n";
            ($maker, @arguments) = ($made, $arguments[0], map { $_->[1] } entries($rest));
        }
        $member{declaration} = literal($arguments[0]);
        if ($maker eq 'property') {
            $member{declaration} .= ' As ' . literal($arguments[1]);
            $member{readOnly} = @arguments == 3;
        } else {
            $member{assigned} = @arguments == 3;
        }
    }
    ($member{name}) = $member{declaration} =~ /^(\w+)/;
    return \%member;
}

sub studioMembers {
    my ($file, $text, $body) = @_;
    return [map { studioMember($file, $text, @$_) } entries($body)];
}

# The classes and the groups of functions that the files of the studio's framework declare.
sub framework {
    my (@classes, @groups);
    my %tables = (properties => 'Properties', methods => 'Methods', constants => 'Constants',
        sharedMethods => 'Shared methods', events => 'Events');
    for my $file (glob("'$root/studio/framework/'*.cpp")) {
        my $text  = content($file);
        my $count = 0;
        while ($text =~ m{((?:^///[^\n]*\n)*)^FrameworkClass \w+\(\) (\{\n.*?^\}\n)}msg) {
            my ($comment, $body) = ($1, $2);
            my %class;
            ($class{name}) = map { literal($_) } $body =~ /($string)/;
            ($class{sentence}, $class{code}) = comment($comment);
            while ($body =~ /\btable\.(\w+) = \{/g) {
                my $kind = $tables{$1} // next;
                $class{$kind} = studioMembers($file, $text, braced($body, pos $body));
                $count += @{ $class{$kind} } if $kind !~ /^(?:Constants|Events)$/;
            }
            push @classes, \%class;
        }
        while ($text =~ m{((?:^\s*///[^\n]*\n)*)\s*exceptionClass\("(\w+)"\)}mg) {
            push @classes, { name => $2, superclass => 'RuntimeException', sentence => (comment($1))[0], code => [] };
        }
        while ($text =~ m{((?:^///[^\n]*\n)*)^FrameworkFunctions (\w+)Functions\(\) \{.*?\n    return \{}msg) {
            my ($comment, $title) = ($1, $2);
            my $functions = studioMembers($file, $text, braced($text, pos $text));
            $count += @$functions;
            push @groups, { name => '', title => ucfirst "$title functions", Methods => $functions };
            @{ $groups[-1] }{ 'sentence', 'code' } = comment($comment);
        }
        my $makers = join '|', 'method', 'property', $text =~ /^Framework(?:Method|Property) (\w+)\(const char\*/mg;
        my $written = () = $text =~ /\b(?:$makers)(?:<[^()]*?>)?\(\s*"/g;
        complain("$file: $written members are declared, $count of them in tables that can be read") if $written != $count;
    }
    @classes = sort { $a->{name} cmp $b->{name} } @classes;
    @groups  = sort { $a->{title} cmp $b->{title} } @groups;
    return (\@classes, \@groups);
}

# What every array has, as a class.
sub arrays {
    my $file = "$root/studio/language/expressions.cpp";
    my $text = content($file);
    $text =~ m{((?:^///[^\n]*\n)*)^constexpr ArrayMember \w+\[\] = \{}mg or die "$file: no table of the arrays' members\n";
    my %class = (name => 'Arrays', Methods => studioMembers($file, $text, braced($text, pos $text)));
    @class{ 'sentence', 'code' } = comment($1);
    return \%class;
}

# --- writing the pages ----------------------------------------------------------------------------------------------

# The variable that a class's lines work on: the last that its own lines declare.
sub subject { (map { /^Dim (\w+)/ ? $1 : () } @{ $_[0]{code} })[-1] // '' }

sub codeOf {
    my ($class, $member) = @_;
    my ($subject, $name) = (subject($class), $class->{name});
    return map { s/\bself\b/$subject/gr =~ s/\bSelfClass\b/$name/gr } @{ $member->{code} };
}

sub fenced { return "```vb\n" . join('', map { "$_\n" } @_) . "```\n" }

# What is left of a sentence whose first line is missing is none.
sub isSentence { $_[0] =~ /^[A-Z].*\.$/ }

sub complain { push @problems, $_[0] }

sub checked {
    my ($class, $kind, $member) = @_;
    my $what = ($class->{name} ? "$class->{name}: " : '') . $member->{declaration};
    complain("$what has no sentence above its declaration") if !isSentence($member->{sentence});
    complain("$what has no line that shows it") if $kind ne 'Constants' && !@{ $member->{code} };
    return $member;
}

sub memberText {
    my ($class, $kind, $member) = @_;
    checked($class, $kind, $member);
    my @notes = ($member->{readOnly} ? ' Read only.' : '', $member->{assigned} && !exists $member->{readOnly} ? ' Can be assigned to.' : '');
    return "### $member->{name}\n\n`$member->{declaration}`\n\n$member->{sentence}" . join('', @notes) . "\n\n"
        . fenced(codeOf($class, $member)) . "\n";
}

# One program of a page's lines, each in a block of its own.
sub program {
    my ($name, $class, @members) = @_;
    my $text = "' The lines of $name, one after the other.\n";
    $text .= "$_\n" for @{ $class->{code} // [] };
    for my $member (@members) {
        my @code = codeOf($class, $member);
        next if !@code;
        $text .= "\nPrint \"-- " . $member->{declaration} =~ s/"/""/gr . "\"\nIf True Then\n" . join('', map { "  $_\n" } @code) . "End If\n";
    }
    for my $constant (@{ $class->{Constants} // [] }) {
        my ($key, $value) = $constant->{declaration} =~ /^(\w+) = (.*)$/;
        $text .= "If $class->{name}.$key <> $value Then Quit(1)\n";
    }
    save('programs/' . $name =~ s{[/ ]}{.}gr . '.rbs', $text);
}

sub following { return @{ $_[0]{code} } ? "The lines below follow these:\n\n" . fenced(@{ $_[0]{code} }) . "\n" : '' }

# Writes the page of a class, whose subclasses without members of their own are listed on it.
sub writeClass {
    my ($class, $folder, @subclasses) = @_;
    complain("$class->{name} has no sentence above its record") if !isSentence($class->{sentence});
    my $text = "# $class->{name}\n\n$class->{sentence}\n\n";
    $text .= "Inherits from [$class->{superclass}]($class->{superclass}.md).\n\n" if $class->{superclass};
    $text .= following($class);
    my @shown;
    for my $kind (@kinds) {
        my $members = $class->{$kind} or next;
        $text .= "## $kind\n\n";
        if ($kind eq 'Constants') {
            $text .= "| | |\n|---|---|\n";
            for my $member (@$members) {
                checked($class, $kind, $member);
                $text .= "| `$member->{declaration}` | $member->{sentence} |\n";
            }
            $text .= "\n";
        } else {
            $text .= memberText($class, $kind, $_) for @$members;
            push @shown, @$members;
        }
    }
    if (@subclasses) {
        $text .= "## Subclasses\n\n| | |\n|---|---|\n";
        for my $subclass (@subclasses) {
            complain("$subclass->{name} has no sentence above its declaration") if !isSentence($subclass->{sentence});
            $text .= "| `$subclass->{name}` | $subclass->{sentence} |\n";
        }
    }
    $text =~ s/\n+\z/\n/;
    save("$folder$class->{name}.md", $text);
    program("$folder$class->{name}", $class, @shown);
}

# Writes a page of functions in groups; a group with a title is a section.
sub writeFunctions {
    my ($name, $title, @groups) = @_;
    my $text = "# $title\n\n";
    for my $group (@groups) {
        my $what = $group->{title} // $title;
        complain("$what has no sentence above its table") if !isSentence($group->{sentence});
        $text .= "## $group->{title}\n\n" if $group->{title};
        $text .= "$group->{sentence}\n\n" . following($group);
        $text .= memberText($group, 'Methods', $_) for @{ $group->{Methods} };
        program($group->{title} ? "$name.$group->{title}" : $name, $group, @{ $group->{Methods} });
    }
    $text =~ s/\n+\z/\n/;
    save("$name.md", $text);
}

# --- counts ---------------------------------------------------------------------------------------------------------

my @words = qw(no one two three four five six seven eight nine ten eleven twelve);
sub counted { my ($n, $what) = @_; return ($words[$n] // $n) . " $what" }

# Documents that say how many there are must say what the tables say.
sub checkCount {
    my ($document, $pattern, @numbers) = @_;
    my $text = content("$root/$document") =~ s/\s+/ /gr;
    my @found = $text =~ $pattern or return complain("$document no longer matches $pattern");
    for my $i (0 .. $#numbers) {
        my $right = grep { $found[$i] eq $_ } $numbers[$i], $words[$numbers[$i]] // ();
        complain("$document says $found[$i] in '$&', the tables have $numbers[$i]") if !$right;
    }
}

# --- all of it ------------------------------------------------------------------------------------------------------

for my $folder ($out, "$out/programs", "$out/studio") { -d $folder or mkdir $folder or die "reference: cannot make $folder: $!\n" }

my @product = registered('plugin/src/main.cpp', 'coreimage');
my @family  = registered('family/src/main.cpp', 'family');
writeClass($_, '') for @product, @family;

my $globals   = 'plugin/src/globals.cpp';
my @functions = @{ tables($globals, content("$root/$globals"))->{table} };
my %page      = (name => '', Methods => \@functions);
content("$root/$globals") =~ m{((?:^///[^\n]*\n)*)^REALmethodDefinition table}m or die "$globals: no table\n";
@page{ 'sentence', 'code' } = comment($1);
writeFunctions('functions', 'Functions', \%page);

my ($classes, $groups) = framework();
my @studio = grep { !$_->{superclass} } @$classes;
for my $class (@studio, arrays()) {
    writeClass($class, 'studio/', grep { ($_->{superclass} // '') eq $class->{name} } @$classes);
}
writeFunctions('studio/functions', 'Functions', @$groups);
my $studioFunctions = 0;
$studioFunctions += @{ $_->{Methods} } for @$groups;

# Filters by when they came: built into 10.4 to 10.9, later, and those that only automatic adjustment hands out.
my %filters = (all => 0, built => 0, later => 0);
if (defined $filters) {
    open my $pipe, '-|', $filters, '--markdown' or die "reference: cannot run $filters: $!\n";
    my $text = do { local $/; <$pipe> };
    close $pipe or die "reference: $filters --markdown failed\n";
    for my $section (split /^## /m, $text) {
        for my $filter (split /^### /m, $section) {
            next if $filter !~ /^CI/;
            $filters{all}++;
            next if $section =~ /^Automatic Adjustment/;
            $filters{ $filter =~ /Since Mac OS X 10\.[4-9]\./ ? 'built' : 'later' }++;
        }
    }
    save('filters.md', $text);
}

sub membersOf { my $n = 0; for my $class (@_) { $n += @{ $class->{$_} // [] } for @kinds } return $n }

sub listed {
    my ($folder, @classes) = @_;
    return join "\n", map { "| [$_->{name}]($folder$_->{name}.md) | $_->{sentence} |" } @classes;
}

save('README.md', <<"TEXT");
# Reference

Every class, member, function and filter, written by `./kaz reference` from the tables that declare them to the host.
Each member comes with a line of code; a test runs them all.

What holds everywhere: rectangles, points and sizes are in pixels, with the origin in the lower left corner; angles are in
radians unless a member says degrees; colour components go from 0 to 1. A constructor raises `UnsupportedOperationException`
when it is called on an object that has been made already. An exception that Cocoa raises arrives as the host's, with Cocoa's
reason as its message.

## The plugin

${\ ucfirst(counted(scalar @product, 'classes'))} with ${\ membersOf(@product)} members, and ${\ counted(scalar @functions, 'global functions')}: see [functions](functions.md).

| | |
|---|---|
${\ listed('', @product)}

## The filters

[The $filters{all} filters](filters.md) with their inputs.

## The sibling plugin

${\ ucfirst(counted(scalar @family, 'classes'))} with ${\ membersOf(@family)} members, which the plugin's own work with.

| | |
|---|---|
${\ listed('', @family)}

## The studio

The host that runs programs here has ${\ counted(scalar @$classes, 'classes')} of its own with ${\ membersOf(@$classes)} members, and
${\ counted($studioFunctions, 'functions')}: see [functions](studio/functions.md) and [arrays](studio/Arrays.md). Its places count from the
upper left corner.

| | |
|---|---|
${\ listed('studio/', @studio)}
TEXT

checkCount('README.md', qr/plugin with (\w+) classes and (\w+) functions/, scalar @product, scalar @functions);
checkCount('CHANGELOG.md', qr/(\w+) classes and (\w+) global functions/, scalar @product, scalar @functions);
checkCount('CHANGELOG.md', qr/members of the (\w+) classes/, scalar @product);
checkCount('README.md', qr/studio's (\w+) classes and (\w+) functions/, scalar @$classes, $studioFunctions);
checkCount('CHANGELOG.md', qr/framework of (\w+) classes with (\w+) members and (\w+) functions/,
    scalar @$classes, membersOf(@$classes), $studioFunctions);
if ($filters{all}) {
    checkCount('CHANGELOG.md', qr/All (\d+) built-in filters of Mac OS X 10.4 to 10.9 and (\d+) later ones/, @filters{qw(built later)});
    checkCount('README.md', qr/All (\d+) built-in filters of Mac OS X 10.4 to 10.9/, $filters{built});
    checkCount('README.md', qr/(\d+) filters; open/, $filters{all});
}

if (@problems) {
    print STDERR "reference: $_\n" for @problems;
    exit 1;
}
