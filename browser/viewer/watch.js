// The page that `kpg watch --serve` shows: opens what is told to it, and again after each save, with the same keys.
import './vistrel-screen.js';

const byId = (id) => document.getElementById(id);
const screen = byId('screen');
const state = byId('state');

function say(text, wrong = false) {
  state.textContent = text;
  state.classList.toggle('wrong', wrong);
}

screen.addEventListener('console', ({detail}) => {
  byId('console').append(detail);
  byId('console').scrollTop = byId('console').scrollHeight;
});
byId('line').addEventListener('submit', (event) => {
  event.preventDefault();
  const text = new FormData(event.target).get('text');
  screen.type(text);
  event.target.reset();
});

const saves = new EventSource('events');
saves.onmessage = ({data}) => {
  const {page, messages, scriptsOpenFiles} = JSON.parse(data);
  say(messages.join('\n') || `Saved at ${new Date().toLocaleTimeString()}`, messages.length > 0);
  if (!page) return;
  screen.scriptsOpenFiles = scriptsOpenFiles;
  byId('console').textContent = '';
  byId('page').textContent = document.title = page.split('/').pop();
  if (screen.src === page) screen.reload({again: true});
  else screen.src = page;
};
saves.onerror = () => say('kpg watch has ended, or can’t be reached. This page goes on with what it has.', true);
saves.onopen = () => screen.src && say('Connected again');
