// The page of `./kaz gallery`: the filters of filters.js as a grid, and one at a time at #Name.
"use strict";

/** An element with attributes (listeners under "on...") and children; null children are left out. */
function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (value === true) element.setAttribute(name, "");
    else if (value !== false && value != null) element.setAttribute(name, value);
  }
  element.append(...children.filter(child => child != null));
  return element;
}

const shortKey = key => key.replace(/^input(?=.)/, "").replace(/^[A-Z](?![A-Z])/, letter => letter.toLowerCase());

// ------------------------------------------------------------------------------------------- pictures

/** A picture of a filter. What is too small for the frame is enlarged with sharp pixels. */
function picture(variant, text, lazy) {
  return make("div", {class: "picture"},
    make("img", {src: variant.file, alt: text, class: variant.small && "small", loading: lazy && "lazy",
                 width: frame.width, height: frame.height}));
}

// ----------------------------------------------------------------------------------------------- code

const quoted = text => /^[\w.,:%@/+=-]+$/.test(text) ? text : "'" + text + "'";

/** The command that makes a variant. */
function commandOf(filter, variant) {
  const words = variant.words.map(([key, , text]) => quoted(shortKey(key) + "=" + text));
  const start = filter.generates ? ["./kaz apply", filter.name] : ["./kaz apply photo.jpg", filter.name];
  const size = filter.generates ? [`--size ${frame.width}x${frame.height}`] : [];
  return [...start, ...words, ...size, "-o out.png"].join(" ");
}

/** Steps of a transform as statements of a program. */
function transformCode(text) {
  const lines = ["Dim place As New NSAffineTransformKaz"];
  for (const step of text.split("+").reverse()) {
    const [what, numbers] = step.split(":");
    const [x, y = x] = numbers.split(",");
    if (what === "scale") lines.push(`place.Scale(${x}, ${y})`);
    if (what === "rotate") lines.push(`place.RotateByDegrees(${x})`);
    if (what === "move") lines.push(`place.Translate(${x}, ${y})`);
  }
  return lines;
}

/** The program that makes a variant. */
function programOf(filter, variant) {
  const lines = [`Dim filter As CIFilterKaz = CIFilterKaz.FilterWithName("${filter.name}")`, "filter.SetDefaults"];
  if (!filter.generates) lines.push('filter.ValueAsCIImage("inputImage") = NewCIImagewithFileKaz(GetFolderItem("photo.jpg"))');
  for (const [key, kind, text] of variant.words) {
    if (kind === "number") lines.push(`filter.ValueAsNumber("${key}") = ${text}`);
    if (kind === "vector") lines.push(`filter.ValueAsCIVector("${key}") = NewCIVectorWithStringKaz("[${text.replaceAll(",", " ")}]")`);
    if (kind === "image") lines.push(`filter.ValueAsCIImage("${key}") = NewCIImagewithFileKaz(GetFolderItem("${text}"))`);
    if (kind === "text") lines.push(`filter.ValueAsString("${key}") = "${text}"`);
    if (kind === "transform") lines.push(...transformCode(text), `filter.ValueAsAffineTransform("${key}") = place`);
    if (kind === "data") lines.push(`Dim bytes As New MemoryBlock(${text.length})`, `bytes.StringValue(0, ${text.length}) = "${text}"`,
                                    `filter.ValueAsData("${key}") = bytes`);
  }
  const result = variant.small ? "" : `.imageByCroppingToRect(New CGRectKaz(0, 0, ${frame.width}, ${frame.height}))`;
  lines.push(`Dim result As Picture = filter.ValueAsCIImage("outputImage")${result}.RenderPicture`,
             'result.Save(GetFolderItem("out.png"), Picture.SaveAsPNG)');
  return lines.join("\n");
}

/** Text in a box with a button that copies it. */
function codeBox(title, text) {
  const button = make("button", {type: "button", "aria-label": "Copy " + title}, "Copy");
  const said = make("span", {class: "hidden", role: "status"});
  button.addEventListener("click", async () => {
    // Pages of the file system may have no clipboard; then the text is selected and copied as a person would.
    try {
      await navigator.clipboard.writeText(text);
    } catch {
      getSelection().selectAllChildren(pre);
      document.execCommand("copy");
      getSelection().removeAllRanges();
    }
    button.textContent = said.textContent = "Copied";
    setTimeout(() => { button.textContent = "Copy"; said.textContent = ""; }, 1500);
  });
  const pre = make("pre", {tabindex: 0, "aria-label": title}, make("code", {}, text));
  return make("section", {class: "part code"}, make("h3", {}, title), button, said, pre);
}

// ------------------------------------------------------------------------------------------ one filter

/** The photograph and the result, with a divider to move; a result of its own kind alone. */
function stage(filter, variant) {
  const transition = variant.input === "inputTime" && filter.category === "Transition";
  const image = picture(variant, `${filter.title}, ${variant.label}`);
  if (filter.generates || variant.small || transition) {
    image.classList.add("stage");
    image.style.setProperty("--split", "0%");
    return image;
  }
  const after = image.firstChild;
  after.classList.add("after");
  const before = make("img", {src: "photo.jpg", alt: "The photograph", class: "before"});
  const range = make("input", {type: "range", min: 0, max: 100, value: 50, "aria-label": "Divider between the photograph and the result",
                               oninput: () => box.style.setProperty("--split", range.value + "%")});
  const box = make("div", {class: "picture stage divided", style: "--split: 50%"}, before, after,
    make("span", {class: "tag left", "aria-hidden": "true"}, "before"), make("span", {class: "tag right", "aria-hidden": "true"}, "after"),
    make("div", {class: "divider"}), range);
  return box;
}

function inputsTable(filter) {
  const swatch = text => /^#[0-9a-f]{6,8}$/.test(text) ? make("i", {style: "background:" + text, "aria-hidden": "true"}) : null;
  const rows = filter.inputs.map(input => make("tr", {}, make("th", {scope: "row"}, shortKey(input.key)), make("td", {}, input.class),
    make("td", {}, input.type), make("td", {}, input.range), make("td", {}, swatch(input.default), input.default)));
  const heads = ["Input", "Class", "Type", "Range", "Default"].map(text => make("th", {scope: "col"}, text));
  return make("section", {class: "part"}, make("h3", {}, "Inputs"),
    make("div", {class: "scroll", tabindex: 0, role: "region", "aria-label": "Inputs"},
      make("table", {}, make("thead", {}, make("tr", {}, ...heads)), make("tbody", {}, ...rows))));
}

function link(filter, before, after) {
  return filter ? make("a", {href: "#" + filter.name}, before + filter.title + after) : make("span");
}

function showDetail(filter) {
  const place = shownOrder.indexOf(filter);
  const heading = make("h2", {tabindex: -1}, filter.title);
  const shown = make("div"), code = make("div");
  const buttons = filter.variants.map(variant => make("button", {type: "button", "aria-pressed": "false", onclick: () => choose(variant)},
    picture(variant, "", true), make("span", {}, variant.label)));
  function choose(variant) {
    filter.variants.forEach((each, i) => buttons[i].setAttribute("aria-pressed", each === variant));
    shown.replaceChildren(stage(filter, variant));
    code.replaceChildren(codeBox("With ./kaz apply", commandOf(filter, variant)), codeBox("In a program", programOf(filter, variant)));
  }
  choose(filter.variants[filter.show]);
  const order = filter.category === "Transition" ? [...buttons.slice(1, 3), buttons[0], ...buttons.slice(3)] : buttons;
  detail.replaceChildren(
    make("nav", {class: "back", "aria-label": "Filters"}, make("a", {href: "#"}, "All filters"),
      link(shownOrder[place - 1], "‹ ", ""), link(shownOrder[place + 1], "", " ›")),
    heading, make("div", {class: "name"}, filter.name), make("p", {class: "lead"}, filter.text),
    make("div", {class: "columns"},
      make("div", {}, shown, make("div", {class: "strip", role: "group", "aria-label": "Values to see"}, ...order)),
      make("div", {}, inputsTable(filter), code,
        make("p", {class: "facts"}, `${filter.category} · since Mac OS X ${filter.since}`, make("br"), "Formula: " + filter.source,
          make("br"), "The pictures that the codes read, such as photo.jpg, lie beside this page."))));
  document.title = filter.title + " – Core Image filters";
  return heading;
}

// ---------------------------------------------------------------------------------------- all filters

const overview = document.getElementById("overview"), detail = document.getElementById("detail");
const search = document.getElementById("search"), count = document.getElementById("count");
let category = "";

for (const filter of filters) {
  filter.words = [filter.name, filter.title, filter.text, filter.category, ...filter.inputs.map(input => input.key)].join(" ").toLowerCase();
  filter.item = make("li", {}, make("a", {class: "card", href: "#" + filter.name}, picture(filter.variants[filter.show], "", true),
    make("div", {class: "words"}, make("strong", {}, filter.title), make("span", {}, filter.text))));
}
// What automatic adjustment alone makes comes last: those filters show little by themselves.
const rank = name => name === "Automatic Adjustment";
const categories = [...new Set(filters.map(filter => filter.category))].sort((a, b) => rank(a) - rank(b) || (a < b ? -1 : 1));
const groups = categories.map(name => {
  const members = filters.filter(filter => filter.category === name), number = make("small");
  const section = make("section", {class: "group", "aria-label": name}, make("h2", {}, name, number),
    make("ul", {class: "grid"}, ...members.map(filter => filter.item)));
  document.getElementById("groups").append(section);
  return {members, section, number};
});
const shownOrder = groups.flatMap(group => group.members);
const chips = ["", ...categories].map(name => make("button", {type: "button", "aria-pressed": String(name === ""), onclick: () => {
  category = name;
  chips.forEach(chip => chip.setAttribute("aria-pressed", chip.dataset.name === name));
  list();
}, "data-name": name}, name || "All"));
document.getElementById("categories").append(...chips);

/** Shows the filters that have all words of the search and are of the category. */
function list() {
  const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
  let all = 0;
  for (const group of groups) {
    let found = 0;
    for (const filter of group.members) {
      const fits = (!category || filter.category === category) && words.every(word => filter.words.includes(word));
      filter.item.hidden = !fits;
      found += fits;
    }
    group.section.hidden = found === 0;
    group.number.textContent = found;
    all += found;
  }
  count.textContent = all === 0 ? "No filter has these words." : all === 1 ? "1 filter" : all + " filters";
}

let left = null; // the filter that was looked at, for the way back
function go() {
  const filter = filters.find(each => "#" + each.name === location.hash);
  detail.hidden = !filter;
  overview.hidden = !!filter;
  if (filter) {
    const heading = showDetail(filter);
    scrollTo(0, 0);
    heading.focus({preventScroll: true});
  } else {
    document.title = "Core Image filters";
    detail.replaceChildren();
    if (left) left.item.querySelector("a").focus();
  }
  left = filter || null;
}

search.addEventListener("input", () => {
  if (location.hash) {
    left = null;
    location.hash = "";
  }
  list();
});
document.querySelector(".skip").addEventListener("click", event => {
  event.preventDefault(); // the address says which filter is shown
  document.getElementById("main").focus();
});
document.querySelector(".search").addEventListener("submit", event => event.preventDefault());
addEventListener("keydown", event => {
  if (event.key === "/" && document.activeElement !== search) {
    event.preventDefault();
    search.focus();
  }
  if (event.key === "Escape" && location.hash && document.activeElement !== search) location.hash = "";
});
addEventListener("hashchange", go);
document.documentElement.style.setProperty("--frame", `${frame.width} / ${frame.height}`);
list();
go();
