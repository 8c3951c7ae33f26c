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

my $string = qr/"(?:[^"\\]|\\.)*"/;

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

# The entries between a table's braces: [comment, expression].
sub entries {
    my ($body) = @_;
    my (@entries, $comment, $expression, $depth);
    ($comment, $expression, $depth) = ('', '', 0);
    my $finish = sub {
        $expression =~ s/^\s+|\s+$//g;
        push @entries, [$comment, $expression] if length $expression;
        ($comment, $expression) = ('', '');
    };
    while ($body =~ m{\G(?:(///[^\n]*\n)|(//[^\n]*\n)|($string)|(.))}sgc) {
        my ($kept, $skipped, $literal, $character) = ($1, $2, $3, $4);
        if    (defined $kept) { $comment .= $kept }
        elsif (defined $skipped) { }
        elsif (defined $literal) { $expression .= $literal }
        elsif ($character eq ',' && $depth == 0) { $finish->() }
        else {
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

my @kinds = ('Properties', 'Methods', 'Constants', 'Shared methods');

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
    my $text = "' The lines of the page $name, one after the other.\n";
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
    save("programs/$name.rbs", $text);
}

sub writeClass {
    my ($class) = @_;
    complain("$class->{name} has no sentence above its record") if !isSentence($class->{sentence});
    my $text = "# $class->{name}\n\n$class->{sentence}\n\n";
    $text .= "Inherits from [$class->{superclass}]($class->{superclass}.md).\n\n" if $class->{superclass};
    $text .= "The lines below follow these:\n\n" . fenced(@{ $class->{code} }) . "\n" if @{ $class->{code} };
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
    $text =~ s/\n+\z/\n/;
    save("$class->{name}.md", $text);
    program($class->{name}, $class, @shown);
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

for my $folder ($out, "$out/programs") { -d $folder or mkdir $folder or die "reference: cannot make $folder: $!\n" }

my @product = registered('plugin/src/main.cpp', 'coreimage');
my @family  = registered('family/src/main.cpp', 'family');
writeClass($_) for @product, @family;

my $globals   = 'plugin/src/globals.cpp';
my @functions = @{ tables($globals, content("$root/$globals"))->{table} };
my %page;
%page = (name => '', sentence => (comment($1))[0], code => (comment($1))[1])
    if content("$root/$globals") =~ m{((?:^///[^\n]*\n)+)^REALmethodDefinition table}m;
my $functionsText = "# Functions\n\n$page{sentence}\n\nThe lines below follow these:\n\n" . fenced(@{ $page{code} }) . "\n";
$functionsText .= memberText(\%page, 'Methods', $_) for @functions;
$functionsText =~ s/\n+\z/\n/;
save('functions.md', $functionsText);
program('functions', \%page, @functions);

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
sub listed { return join("\n", map { "| [$_->{name}]($_->{name}.md) | $_->{sentence} |" } @_) }

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
${\ listed(@product)}

## The filters

[The $filters{all} filters](filters.md) with their inputs.

## The sibling plugin

${\ ucfirst(counted(scalar @family, 'classes'))} with ${\ membersOf(@family)} members, which the plugin's own work with.

| | |
|---|---|
${\ listed(@family)}
TEXT

checkCount('README.md', qr/plugin with (\w+) classes and (\w+) functions/, scalar @product, scalar @functions);
checkCount('CHANGELOG.md', qr/(\w+) classes and (\w+) global functions/, scalar @product, scalar @functions);
checkCount('CHANGELOG.md', qr/members of the (\w+) classes/, scalar @product);
if ($filters{all}) {
    checkCount('CHANGELOG.md', qr/All (\d+) built-in filters of Mac OS X 10.4 to 10.9 and (\d+) later ones/, @filters{qw(built later)});
    checkCount('README.md', qr/All (\d+) built-in filters of Mac OS X 10.4 to 10.9/, $filters{built});
    checkCount('README.md', qr/(\d+) filters; open/, $filters{all});
}

if (@problems) {
    print STDERR "reference: $_\n" for @problems;
    exit 1;
}
