// Puts a page in place of its picture when somebody wants to try it.
import './viewer/vistrel-screen.js';

function tryIt(picture) {
  const screen = document.createElement('vistrel-screen');
  const keys = picture.dataset.keys.split(' ').filter((key) => key);
  screen.addEventListener('page', () => keys.forEach((key) => screen.key(key)), {once: true});
  screen.setAttribute('remote', '');
  screen.setAttribute('label', picture.querySelector('img').alt);
  screen.src = picture.dataset.page;
  picture.replaceChildren(screen);
  screen.focus();
}

for (const picture of document.querySelectorAll('.page'))
  picture.querySelector('button').onclick = () => tryIt(picture);
