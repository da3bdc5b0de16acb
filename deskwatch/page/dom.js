/// Makes an element. Properties that begin with "on" are listeners, "aria-..." and "data-..." are attributes; children are
/// nodes or texts, so that nothing that a server or a log says is ever markup.
export function el(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name.startsWith('on')) {
      element.addEventListener(name.slice(2), value);
    } else if (name.includes('-') || name === 'role' || name === 'list') {
      element.setAttribute(name, value);
    } else {
      element[name] = value;
    }
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

const svgSpace = 'http://www.w3.org/2000/svg';

export function svg(tag, attributes = {}, ...children) {
  const element = document.createElementNS(svgSpace, tag);
  for (const [name, value] of Object.entries(attributes)) {
    element.setAttribute(name, value);
  }
  element.append(...children);
  return element;
}

const iconPaths = {
  lock: 'M7 11V8a5 5 0 0 1 10 0v3M5 11h14v10H5z',
  open: 'M7 11V8a5 5 0 0 1 9.6-2M5 11h14v10H5z',
  shield: 'M12 3l8 3v6c0 5-3.5 8-8 9-4.5-1-8-4-8-9V6z',
  mail: 'M3 6h18v13H3zM3 7l9 7 9-7',
  wipe: 'M4 7h16M9 7V4h6v3M6 7l1 14h10l1-14M10 11v6M14 11v6',
  hand: 'M8 12V6a1.6 1.6 0 0 1 3 0v5M11 11V4.500a1.600 1.600 0 0 1 3 0V11M14 11V6a1.600 1.600 0 0 1 3 0v8c0 4-2 7-6 7-3 0-4.500-2-7-7a1.700 1.700 0 0 1 3-1l1 1.500',
  sleep: 'M20 14.500a8.500 8.500 0 1 1-10-11 7 7 0 0 0 10 11z',
  power: 'M12 3v9M6.500 6.500a8 8 0 1 0 11 0',
  turn: 'M20 12a8 8 0 1 1-3-6.200',
};

export function icon(name, className = 'icon') {
  return svg('svg', { viewBox: '0 0 24 24', class: className, 'aria-hidden': 'true' }, svg('path', { d: iconPaths[name] }));
}

export function button(text, onclick, properties = {}) {
  return el('button', { type: 'button', onclick, ...properties }, text);
}

let lastId = 0;
export function newId(stem) {
  lastId += 1;
  return `${stem}-${lastId}`;
}

/// The name of a field as code, which may break after each underscore.
export function fieldName(name) {
  return el('code', {}, ...name.split('_').flatMap((part, index) => (index ? ['_', el('wbr'), part] : [part])));
}

/// A labelled control.
export function labelled(text, control, properties = {}) {
  return el('label', properties, text, control);
}
